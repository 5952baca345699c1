#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "history/HistoryFiles.h"
#include "history/HistoryReads.h"
#include "history/MetricsAccumulator.h"
#include "history/MetricsStoreKeeper.h"
#include "ui/settings/SettingsStore.h"

#include <atomic>
#include <span>

namespace sysinfo {
class SystemEvents;
} // namespace sysinfo

namespace quarn {

class Prefs;

/// What a MetricsRecorder works with. What it refers to must outlive it.
struct MetricsRecorderSetup {
    Queue& queue; ///< where the database is used, "com.kelmora.quarn.metrics"
    Prefs& prefs;
    std::filesystem::path file = metricsFile();

    /// The name of an application for people. Called on the queue; may touch the file system.
    std::function<std::string(const std::string& app)> nameOf = {};
    /// Called on the queue whenever the status changes.
    std::function<void(const HistoryStatus&)> statusChanged = {};

    enum class SleepNotices { fromSystem, none } sleepNotices = SleepNotices::fromSystem;
    std::function<WallTime()> now = [] { return std::chrono::system_clock::now(); };
    /// Seconds on a scale that only goes forward, sleep included.
    std::function<double()> steadySeconds = secondsSinceBoot;
    /// Opens the database; by default the one at `file`.
    MetricsStoreKeeper::OpenStore openStore = {};

    static double secondsSinceBoot();
};

/// Records the long-term history: gathers what snapshots say, writes it once a minute, and answers what the
/// pages ask about the past.
///
///     MetricsRecorder recorder({.queue = queue, .prefs = prefs, .nameOf = …});
///     recorder.start(prefs.saveMetricsHistory.get());
///     apps.observeActivity([&](WallTime at, auto activity) { recorder.addApps(at, activity); });
///     monitor.observe([&](const Snapshot& snapshot) { recorder.record(snapshot), apps.take(snapshot); });
///
/// Records while the preference `saveMetricsHistory` is on. Nothing here fails: what went wrong is logged and
/// in `status`, and reads answer `failed` or nothing. All calls return at once but where they say otherwise;
/// completions run on the queue. Reads see what has been written, which is at most a minute old.
///
/// At most one program records into a database. Others read, and one of them takes over when it ends.
class MetricsRecorder {
public:
    explicit MetricsRecorder(MetricsRecorderSetup setup);
    /// Writes what is pending; waits for that. Not on the queue.
    ~MetricsRecorder();
    MetricsRecorder(const MetricsRecorder&) = delete;
    MetricsRecorder& operator=(const MetricsRecorder&) = delete;

    /// Follows the preference and the machine's sleep from now on, and records if `enabled`. Once, on the
    /// main thread.
    void start(bool enabled);

    /// Called for every snapshot; costs no input or output. Any thread.
    void record(const Snapshot& snapshot);
    /// Called for every process list, added up by application (AppWatch). Any thread.
    void addApps(WallTime at, std::span<const AppActivity> apps);
    /// What applications received and sent between two moments. Any thread.
    void add(std::span<const AppTraffic> networkGrowth, WallTime from, WallTime to);

    /// Writes what is pending. Waiting returns when it is on its way to the disk; not on the queue.
    enum class Wait { no, yes };
    void flush(Wait wait);
    /// Deletes the whole history; the completion gets nullopt, or what went wrong.
    void clear(std::function<void(std::optional<std::string>)> completion);

    template <class T>
    using Completion = std::function<void(T)>;
    /// Points of a minute for the last hour and day, of an hour for week and month.
    void systemSeries(TopAppsRange over, Completion<MetricsRead<SystemSeriesRead>> completion);
    void topApps(TopAppsRange over, AppHistoryMetric by, size_t limit,
                 Completion<std::optional<TopAppsRead>> completion);
    /// By hours; by local days for the month.
    void appSeries(std::string appId, TopAppsRange over,
                   Completion<std::optional<std::vector<AppPoint>>> completion);
    void recentTotals(Completion<std::optional<RecentSystemTotals>> completion);
    /// All that a view of the history shows, at one time.
    void ask(HistoryQuestion question, Completion<MetricsRead<HistoryAnswer>> completion);

    /// How recording is going. Any thread.
    HistoryStatus status() const { return status_.get(); }

    /// What the machine's sleep does to recording: what is pending is written, and the time asleep is not
    /// counted as observed. Any thread.
    void willSleep();
    void didWake();

private:
    void post(std::function<void()> work);

    // All below runs on the queue.
    void setRecording(bool recording);
    void resolveNames();
    void writePending();
    template <class T, class Ask>
    MetricsRead<T> read(const Ask& ask);

    MetricsRecorderSetup setup_;
    Locked<MetricsAccumulator> accumulator_;
    Locked<HistoryStatus> status_;
    std::atomic<bool> isRecording_{false};
    MetricsStoreKeeper keeper_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool timerBegun_ = false;

    SettingsStore::Subscription preference_;
    std::unique_ptr<sysinfo::SystemEvents> sleepObservers_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

} // namespace quarn
