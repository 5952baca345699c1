#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quarn {

/// Somewhere work can be posted: a serial queue, or the program's main loop. Posted work runs one piece at a
/// time, in order. `async` may be called from any thread and never blocks or runs the work itself.
class Executor {
public:
    virtual ~Executor() = default;
    virtual void async(std::function<void()> work) = 0;
};

/// How urgent the work of a queue is; maps to the nice value of its thread where the system permits.
enum class QualityOfService { userInitiated, utility, background };

/// A repeating timer; destroying it, or `cancel`, stops it. After `cancel` returned on the queue itself no
/// further run starts; from another thread one run may still be under way.
class RepeatingTimer {
public:
    virtual ~RepeatingTimer() = default;
    virtual void cancel() = 0;
};

/// An executor with time: what a component that schedules its own work is given. Tests give one whose time
/// is driven by hand.
class Queue : public Executor {
public:
    using Duration = std::chrono::nanoseconds;

    /// Runs `work` on the queue and waits for it. Called on the queue itself it runs `work` at once. An
    /// exception that `work` throws reaches the caller. After the queue stopped, `work` is not run.
    virtual void sync(const std::function<void()>& work) = 0;
    /// Runs `work` once, `delay` from now.
    virtual void after(Duration delay, std::function<void()> work) = 0;
    /// Runs `work` at once and then every `interval`, each run at most `leeway` late for the system's
    /// convenience. Runs that would pile up behind slow work are dropped, not repeated in a burst.
    virtual std::unique_ptr<RepeatingTimer> every(Duration interval, Duration leeway,
                                                  std::function<void()> work) = 0;
    /// Changes the urgency of the work to come.
    virtual void setQualityOfService(QualityOfService qos) = 0;
};

} // namespace quarn
