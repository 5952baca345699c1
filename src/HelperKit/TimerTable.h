#pragma once

#include "HelperKit/Queue.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarn {

/// A piece of work that waits for its time. `cancelled` may be set by any thread; the rest belongs to the
/// table that holds it.
struct TimedWork {
    using Instant = std::chrono::steady_clock::time_point;

    /// Due `delay` after `now`. Times out of range are brought into it; an interval is at least 1 ms.
    TimedWork(Instant now, Queue::Duration delay, Queue::Duration repeat, Queue::Duration late,
              std::function<void()> run);

    Instant due;
    Queue::Duration interval; ///< 0 for work that runs once
    Queue::Duration leeway;
    std::function<void()> work;
    std::atomic<bool> cancelled{false};
};

/// The delayed and repeating work of one queue: knows what is due and when to wake next, but neither sleeps
/// nor knows the clock. Belongs to one thread; the work that it runs may add to it and remove from it,
/// itself included.
class TimerTable {
public:
    using Instant = TimedWork::Instant;
    using Duration = Queue::Duration;
    using Clock = std::function<Instant()>;
    /// Runs a piece of work; must not throw.
    using Runner = std::function<void(const std::function<void()>&)>;

    struct WakeUp {
        Instant due;
        Duration slack; ///< so much later every timer is still within its leeway
        bool operator==(const WakeUp&) const = default;
    };

    TimerTable(Clock now, Runner run) : now_(std::move(now)), run_(std::move(run)) {}
    ~TimerTable() { clear(); }
    TimerTable(const TimerTable&) = delete;
    TimerTable& operator=(const TimerTable&) = delete;

    void add(std::shared_ptr<TimedWork> timed);
    /// Forgets `timed` and releases its closure (at the end of its run, when that is under way).
    void remove(TimedWork& timed);
    void clear();

    /// Runs, each once and the longest due first, what is due now. Repeating work keeps its cadence, counted
    /// from its first run; the runs that it missed meanwhile are dropped.
    void runDue();

    std::optional<WakeUp> nextWakeUp() const;

private:
    std::shared_ptr<TimedWork> longestDue(Instant limit) const;
    void run(TimedWork& timed);

    Clock now_;
    Runner run_;
    std::vector<std::shared_ptr<TimedWork>> waiting_;
    const TimedWork* running_ = nullptr;
};

} // namespace quarn
