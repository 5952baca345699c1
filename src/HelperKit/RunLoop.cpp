#include "HelperKit/RunLoop.h"

#include "HelperKit/GuardedRun.h"
#include "HelperKit/Log.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace quarn {

namespace {

constexpr std::string_view label = "main loop";

void signalEvent(int fd) {
    const uint64_t one = 1;
    while (::write(fd, &one, sizeof one) < 0 && errno == EINTR) {
    }
}

void clearEvent(int fd) {
    uint64_t count = 0;
    while (::read(fd, &count, sizeof count) < 0 && errno == EINTR) {
    }
}

} // namespace

struct RunLoop::Watched {
    int fd;
    std::function<void()> readable;
    bool active = true; ///< false once the watch was dropped, perhaps by another closure of the same round
};

class RunLoop::WatchHandle final : public Watch {
public:
    WatchHandle(RunLoop& loop, std::shared_ptr<Watched> watched)
        : loop_(loop), watched_(std::move(watched)) {}
    ~WatchHandle() override {
        watched_->active = false;
        std::erase(loop_.watched_, watched_);
    }

private:
    RunLoop& loop_;
    std::shared_ptr<Watched> watched_;
};

RunLoop::RunLoop() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp_) throw std::system_error(errno, std::generic_category(), "could not create the main loop");
}

RunLoop::~RunLoop() = default;

void RunLoop::async(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(work));
    // With more than this one waiting, the loop was woken before or is about to look again.
    if (posted_.size() == 1) signalEvent(wakeUp_.get());
}

void RunLoop::run() {
    while (!stopping_.exchange(false)) serve(hasPosted() ? Wait::none : Wait::untilSomethingHappens);
}

void RunLoop::stop() {
    stopping_ = true;
    signalEvent(wakeUp_.get());
}

void RunLoop::runPending() {
    const bool stopWasAsked = stopping_.exchange(false);
    serve(Wait::none);
    if (stopWasAsked) stopping_ = true;
}

std::unique_ptr<RunLoop::Watch> RunLoop::watch(int fd, std::function<void()> readable) {
    const auto watched = std::make_shared<Watched>(Watched{fd, std::move(readable)});
    watched_.push_back(watched);
    return std::make_unique<WatchHandle>(*this, watched);
}

void RunLoop::serve(Wait wait) {
    std::vector<pollfd> polled{{wakeUp_.get(), POLLIN, 0}};
    for (const auto& watched : watched_) polled.push_back({watched->fd, POLLIN, 0});
    const auto round = watched_; // closures may add and drop watches

    if (::poll(polled.data(), polled.size(), wait == Wait::none ? 0 : -1) < 0) return; // EINTR: look again
    if (polled[0].revents) clearEvent(wakeUp_.get());
    servePosted();
    for (size_t i = 0; i < round.size() && !stopping_; ++i) {
        Watched& watched = *round[i];
        const short events = polled[i + 1].revents;
        if (!events || !watched.active) continue;
        if (events & POLLNVAL) {
            log("main loop: a watched descriptor was closed");
            std::erase(watched_, round[i]);
            continue;
        }
        runGuarded(label, watched.readable);
    }
}

/// Runs what was posted before; what that posts in turn waits, so that descriptors have their turn too.
void RunLoop::servePosted() {
    std::unique_lock lock(mutex_);
    for (size_t left = posted_.size(); left > 0 && !stopping_; --left) {
        const auto work = std::move(posted_.front());
        posted_.pop_front();
        lock.unlock();
        runGuarded(label, work);
        lock.lock();
    }
}

bool RunLoop::hasPosted() {
    const std::lock_guard lock(mutex_);
    return !posted_.empty();
}

} // namespace quarn
