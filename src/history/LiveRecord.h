#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "history/AppLiveHistory.h"
#include "history/HistoryArchive.h"
#include "history/HistoryExport.h"
#include "history/HistoryFiles.h"
#include "history/HistoryStore.h"
#include "history/HistoryTopProcesses.h"
#include "history/RecorderLock.h"

namespace quarn {

/// What a LiveRecord works with. What it refers to must outlive it.
struct LiveRecordSetup {
    Queue& queue; ///< where files are written, "com.kelmora.quarn.recording"
    std::filesystem::path file = liveHistoryFile();
    /// The breaks of this run, as Monitor::historyBreaks tells them. Any thread.
    std::function<std::vector<HistoryBreak>()> breaks = {};
    /// The name of an application for people. Called where `addApps` is; may touch the file system.
    std::function<std::string(const std::string& app)> nameOf = {};
    std::function<WallTime()> now = [] { return std::chrono::system_clock::now(); };
};

/// The last half hour in detail: the machine by samples, applications by minutes. It is saved every five
/// minutes and at the end, so that charts do not begin empty with the next start, and written as CSV when
/// somebody wants that.
///
///     LiveRecord live({.queue = recording, .breaks = [&] { return monitor.historyBreaks(); }});
///     live.begin();
///     monitor.observe([&](const Snapshot& snapshot) { live.add(snapshot, monitor.sensorGroupMaxima()); });
///
/// Nothing here fails but where it says so: what went wrong is logged. At most one program saves into an
/// archive; others only read it, and one of them takes over when it ends.
class LiveRecord {
public:
    explicit LiveRecord(LiveRecordSetup setup);
    /// Saves once more when it has begun, and ends a recording; waits for both. Not on the queue.
    ~LiveRecord();
    LiveRecord(const LiveRecord&) = delete;
    LiveRecord& operator=(const LiveRecord&) = delete;

    /// Restores what the last run saved, which takes some milliseconds, and saves from now on.
    void begin();
    /// Saves now when it has begun, and waits for it. Not on the queue.
    void flush();

    /// One tick, with the hottest sensors by part of the machine. Costs no input or output. One thread.
    void add(const Snapshot& snapshot, std::span<const SensorGroups::Maximum> maxima);
    /// What applications did up to `at`. One thread, which may be another.
    void addApps(WallTime at, std::span<const AppActivity> activity);

    // Any thread, from here on.
    std::vector<SharedSample> samples() const; ///< oldest first; shares them
    /// The spans without samples, of this run and those before.
    std::vector<HistoryBreak> breaks() const;
    /// What applications did in the last half hour, the greatest by `metric` first.
    std::vector<AppTotal> topApps(AppHistoryMetric metric, size_t limit) const;
    /// What one of them did, see AppLiveHistory::minutesOf.
    std::vector<AppMinute> minutesOf(std::string_view app) const;

    /// All samples as CSV, see HistoryExport::writeCSV. Throws std::system_error; waits for the disk.
    void writeCSV(const std::filesystem::path& file) const { HistoryExport::writeCSV(file, samples()); }
    /// The continuous recording, which gets every sample.
    HistoryExport::Recorder& recorder() { return recorder_; }
    const HistoryExport::Recorder& recorder() const { return recorder_; }

    /// Puts what the archive holds before what there is. One that cannot be read is set aside under a new
    /// name, unless another program saves into it. Waits for the disk.
    void restore(WallTime now);
    /// Writes the archive: whole or not at all, and for this user alone. While another program saves into it,
    /// or when there is nothing to keep, does nothing. Waits for the disk. Once begun, only on the queue.
    void save();

private:
    struct Kept {
        HistoryStore store;
        std::vector<HistoryBreak> earlierBreaks;
    };
    void setBrokenAside(const char* problem);

    LiveRecordSetup setup_;
    Locked<Kept> kept_;
    Locked<AppLiveHistory> apps_;
    HistoryTopProcesses top_; ///< this and the next: of the thread that adds
    SharedSample last_;
    HistoryExport::Recorder recorder_;
    RecorderLock lock_;
    std::unique_ptr<RepeatingTimer> timer_;
    bool timerBegun_ = false;
};

/// What an archive holds; nullopt when there is none. Throws std::runtime_error with the path when it cannot
/// be read. Waits for the disk.
std::optional<HistoryArchive::Content> readArchive(const std::filesystem::path& file);

} // namespace quarn
