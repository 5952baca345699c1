#pragma once

#include "HelperKit/SerialQueue.h"
#include "history/LiveRecord.h"
#include "history/MetricsRecorder.h"
#include "monitor/AppWatch.h"

namespace quarn {

class Monitor;

/// What a program keeps of the machine that its Monitor samples: use by application, the last half hour in
/// detail, and the long-term history of this user.
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
        std::filesystem::path liveFile = liveHistoryFile();
        /// Called on the main executor's thread.
        std::function<void(const HistoryStatus&)> statusChanged = {};
        /// The live record has got what the last run saved. Likewise.
        std::function<void()> restored = {};
    };
    /// Nothing of a captured machine is recorded: its history reads as `off`, and its half hour is not saved.
    explicit History(Setup setup);
    ~History();
    History(const History&) = delete;
    History& operator=(const History&) = delete;

    /// Writes what is not written yet, and waits for it; so does the destructor.
    void save();

    AppWatch& apps() { return apps_; }
    MetricsRecorder& metrics() { return metrics_; }
    LiveRecord& live() { return live_; }

private:
    void take(const Snapshot& snapshot);
    void tell(const HistoryStatus& status);
    void restoreLive();
    std::string nameOf(const std::string& app) const;

    Setup setup_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
    SerialQueue queue_{"com.kelmora.quarn.metrics"};
    std::shared_ptr<AppOwnerIndex> index_;
    MetricsRecorder metrics_;
    SerialQueue recording_{"com.kelmora.quarn.recording", QualityOfService::background};
    LiveRecord live_;
    AppWatch apps_; ///< feeds the above, so that it ends first
};

} // namespace quarn
