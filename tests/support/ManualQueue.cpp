#include "support/ManualQueue.h"

#include <algorithm>

namespace quarn::testing {

class ManualQueue::Timer final : public RepeatingTimer {
public:
    Timer(ManualQueue& queue, uint64_t id) : queue_(queue), id_(id) {}
    ~Timer() override { cancel(); }
    void cancel() override { queue_.timed_.erase(id_); }

private:
    ManualQueue& queue_;
    uint64_t id_;
};

void ManualQueue::after(Duration delay, std::function<void()> work) {
    timed_.emplace(nextId_++, Timed{now_ + delay, {}, std::move(work)});
}

std::unique_ptr<RepeatingTimer> ManualQueue::every(Duration interval, Duration leeway,
                                                   std::function<void()> work) {
    lastInterval = interval;
    lastLeeway = leeway;
    timed_.emplace(nextId_, Timed{now_, interval, std::move(work)});
    return std::make_unique<Timer>(*this, nextId_++);
}

void ManualQueue::run() {
    while (!pending_.empty()) {
        const auto work = std::move(pending_.front());
        pending_.pop_front();
        work();
    }
}

void ManualQueue::advance(Duration by) {
    const Duration end = now_ + by;
    run();
    for (;;) {
        const auto next = std::min_element(timed_.begin(), timed_.end(), [](const auto& a, const auto& b) {
            return a.second.due < b.second.due;
        });
        if (next == timed_.end() || next->second.due > end) break;
        now_ = std::max(now_, next->second.due);
        const auto work = next->second.work;
        if (next->second.interval > Duration::zero())
            next->second.due += next->second.interval;
        else
            timed_.erase(next);
        work();
        run();
    }
    now_ = end;
}

} // namespace quarn::testing
