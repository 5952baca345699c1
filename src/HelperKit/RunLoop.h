#pragma once

#include "HelperKit/Queue.h"

#include "core/UniqueFd.h"

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace quarn {

/// The main queue of a program without a windowing system: posted work and readable file descriptors are
/// served, one closure at a time, by the thread that calls `run`.
///
///     RunLoop loop;
///     const auto keys = loop.watch(STDIN_FILENO, [&] { readKeys(); });
///     monitor.start();     // posts its snapshots to the loop
///     loop.run();          // until somebody calls loop.stop()
///
/// Only `async` and `stop` may be called from other threads. An exception that escapes from a closure is
/// logged and the loop goes on. Without anything to do the loop sleeps and does not wake up.
class RunLoop final : public Executor {
public:
    RunLoop(); ///< throws std::system_error when the process is out of descriptors
    ~RunLoop() override;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Work posted to a loop that does not run waits for the next `run`; what is left is destroyed with the
    /// loop, unrun.
    void async(std::function<void()> work) override;

    /// Serves until `stop`. Work still pending then stays for a later `run`.
    void run();
    /// Makes `run` return after the closure under way; called before `run`, makes that one return at once.
    /// Not for signal handlers: block the signal and watch a signalfd.
    void stop();

    /// Runs what is posted and readable by now and returns without waiting; for tests and tidying up at the
    /// end.
    void runPending();

    /// Watches until it is destroyed, at any time but not after the loop. Loop's thread only.
    class Watch {
    public:
        virtual ~Watch() = default;
    };

    /// Runs `readable` whenever reading from `fd` would not block: there is data, the end of the file, or an
    /// error. What is not read is reported again, so at the end of the file drop the watch. The loop does not
    /// own `fd`; one that is closed under its watch is logged and no longer watched.
    [[nodiscard]] std::unique_ptr<Watch> watch(int fd, std::function<void()> readable);

private:
    struct Watched;
    class WatchHandle;

    enum class Wait { none, untilSomethingHappens };
    void serve(Wait wait);
    void servePosted();
    bool hasPosted();

    scutil::UniqueFd wakeUp_; ///< an eventfd, readable when work was posted or the loop shall stop
    std::vector<std::shared_ptr<Watched>> watched_;
    std::atomic<bool> stopping_{false};
    std::mutex mutex_;
    std::deque<std::function<void()>> posted_; ///< guarded by `mutex_`
};

} // namespace quarn
