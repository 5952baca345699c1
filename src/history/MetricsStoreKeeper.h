#pragma once

#include "history/ClockTrust.h"
#include "history/MetricsStore.h"
#include "history/RecorderLock.h"

#include <functional>
#include <memory>

namespace quarn {

/// How recording is going, for people.
struct HistoryStatus {
    enum class State {
        off,           ///< not wanted
        recording,     ///< by this program
        otherRecorder, ///< by another program; this one only reads
        failed         ///< the database cannot be used
    };
    State state = State::off;
    std::string problem; ///< what is wrong or was lost, in a sentence; empty when all is well

    bool operator==(const HistoryStatus&) const = default;
};

/// Keeps the database of one recorder: opens it when it is first needed, becomes its one writer when no other
/// program is, looks after it once an hour, and lives through whatever happens to it.
///
/// - A database that cannot be opened is not tried again until `begin`.
/// - A broken one is set aside under a new name and a new one begun, once; a second broken one counts as
///   failed.
/// - A failed write drops its batch; the next one is tried as if nothing had been.
///
/// Failures are logged and told by `status`; only `clear` throws. Belongs to one queue.
class MetricsStoreKeeper {
public:
    using OpenStore = std::function<std::unique_ptr<MetricsStore>(MetricsStore::Access)>;
    struct Setup {
        std::filesystem::path file;
        OpenStore openStore;
        std::function<double()> steadySeconds; ///< only goes forward, sleep included
        std::function<void(const HistoryStatus&)> statusChanged;
    };

    explicit MetricsStoreKeeper(Setup setup);

    /// Recording begins, or is tried anew: takes the place of the writer if it is free.
    void begin();
    /// Recording ends: closes the database and frees the place of the writer.
    void end();

    /// Writes a batch and does what maintenance is due. While another program records, takes over from it
    /// when it has ended; the batch, which that one has recorded too, is dropped.
    void write(const MetricsBatch& batch, WallTime now);
    /// Throws std::exception.
    void clear();

    /// What `ask` answers about the store; nullopt when it failed.
    template <class Ask>
    auto read(const Ask& ask) -> std::optional<decltype(ask(std::declval<MetricsStore&>()))> {
        std::optional<decltype(ask(std::declval<MetricsStore&>()))> answer;
        guardRead([&](MetricsStore& store) { answer = ask(store); });
        return answer;
    }

    const HistoryStatus& status() const { return status_; }

private:
    using Use = std::function<void(MetricsStore&)>;
    void guardRead(const Use& ask);
    void guardWrite(const Use& work);
    void use(MetricsStore* store, const Use& work);
    MetricsStore* forWriting();
    MetricsStore* forReading();
    bool becomeWriter();
    void open(MetricsStore::Access access);
    void openForWriting();
    bool replaceBroken(const SQLiteError& error);
    void maintain(MetricsStore& store, WallTime now);
    void fail(const char* what, const std::exception& error);
    void tell(HistoryStatus status);

    Setup setup_;
    HistoryStatus status_;
    RecorderLock lock_;
    std::unique_ptr<MetricsStore> store_;
    MetricsStore::Access access_ = MetricsStore::Access::reading;
    bool storeFailed_ = false;
    bool replaced_ = false;
    bool otherRecorded_ = false; ///< what has gathered since is in the database already
    std::string lost_;           ///< what was set aside, told as long as the program runs
    WallTime nextMaintenance_{};
    std::optional<ClockTrust> clock_;
};

} // namespace quarn
