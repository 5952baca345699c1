#pragma once

#include "HelperKit/SerialQueue.h"
#include "history/MetricsRecorder.h"
#include "monitor/AppWatch.h"

namespace quarn {

class Monitor;

/// What a program keeps of the machine that its Monitor samples: use by application, and the long-term
/// history of this user.
///
/// Follows the Monitor's snapshots from its construction on. On the main executor's thread; destroyed before
/// the Monitor, and after the Monitor has published its last snapshot.
class History {
public:
    /// What it works with must outlive it.
    struct Setup {
        Monitor& monitor;
        Prefs& prefs;
        Executor& main;
        std::filesystem::path file = metricsFile();
        /// Called on the main executor's thread.
        std::function<void(const HistoryStatus&)> statusChanged = {};
    };
    /// Nothing of a captured machine is recorded: its history reads as `off`.
    explicit History(Setup setup);

    AppWatch& apps() { return apps_; }
    MetricsRecorder& metrics() { return metrics_; }

private:
    void take(const Snapshot& snapshot);
    void tell(const HistoryStatus& status);

    Setup setup_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
    SerialQueue queue_{"com.kelmora.quarn.metrics"};
    std::shared_ptr<AppOwnerIndex> index_;
    MetricsRecorder metrics_;
    AppWatch apps_; ///< feeds the above, so that it ends first
};

} // namespace quarn
