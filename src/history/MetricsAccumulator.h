#pragma once

#include "history/MetricsBatch.h"
#include "history/MetricsSample.h"

#include <functional>
#include <set>
#include <span>

namespace quarn {

/// Integrates samples over time into a MetricsBatch: the machine by minute, applications by hour.
///
/// Each interval goes whole to the period of its end. Nothing is integrated over more than a minute (sleep,
/// a program that stood still) or when the clock was set back: the history has a hole there, on purpose.
///
/// A plain value; its owner keeps threads apart.
class MetricsAccumulator {
public:
    using Names = std::map<std::string, std::string, std::less<>>; ///< by application

    /// The first sample only sets the reference point.
    void add(const MetricsSample& sample);
    /// One process list, added up by application: each application is in it once.
    void addUnnamed(WallTime at, std::span<const AppActivity> apps);
    /// What applications received and sent between two moments.
    void addUnnamed(std::span<const AppTraffic> traffic, WallTime from, WallTime to);

    /// Applications that were recorded without a name. Their owner looks for the names, which may take a
    /// while, and brings them.
    const std::set<std::string, std::less<>>& unnamedApps() const { return unnamedApps_; }
    void name(const Names& names);

    /// Takes what has been gathered. Integration goes on where it is.
    MetricsBatch drain();
    /// The next sample and the next process list only set the reference points: after sleep.
    void forgetReferences();

private:
    AppMetrics& bucketFor(MetricsBatch::Apps& hour, std::string_view app);

    MetricsBatch batch_;
    std::optional<MetricsSample> lastSample_;
    std::optional<WallTime> lastProcessList_;
    Names names_;
    std::set<std::string, std::less<>> unnamedApps_;
};

} // namespace quarn
