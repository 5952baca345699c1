#include "HelperKit/TimerTable.h"

#include <algorithm>
#include <utility>

namespace quarn {

namespace {

/// Longer delays are as good as never, and keep sums of times from overflowing.
constexpr Queue::Duration longestDelay = std::chrono::hours(24 * 365 * 50);
/// The resolution of the waits; a shorter interval would only spin.
constexpr Queue::Duration shortestInterval = std::chrono::milliseconds(1);

Queue::Duration clampedDelay(Queue::Duration delay) {
    return std::clamp(delay, Queue::Duration::zero(), longestDelay);
}

} // namespace

TimedWork::TimedWork(Instant now, Queue::Duration delay, Queue::Duration repeat, Queue::Duration late,
                     std::function<void()> run)
    : due(now + clampedDelay(delay)), interval(repeat), leeway(clampedDelay(late)), work(std::move(run)) {
    if (interval != Queue::Duration::zero()) interval = std::clamp(interval, shortestInterval, longestDelay);
}

void TimerTable::add(std::shared_ptr<TimedWork> timed) {
    if (!timed->cancelled) waiting_.push_back(std::move(timed));
}

void TimerTable::remove(TimedWork& timed) {
    timed.cancelled = true;
    // The closure goes last: it may own what keeps `timed` alive, or call back into this table.
    const auto doomed = timed.work && running_ != &timed ? std::exchange(timed.work, nullptr) : nullptr;
    std::erase_if(waiting_, [&](const auto& each) { return each.get() == &timed; });
}

void TimerTable::clear() {
    while (!waiting_.empty()) {
        const auto timed = waiting_.back();
        remove(*timed);
    }
}

void TimerTable::runDue() {
    const Instant limit = now_();
    while (const auto timed = longestDue(limit)) run(*timed);
}

std::shared_ptr<TimedWork> TimerTable::longestDue(Instant limit) const {
    const auto first = std::min_element(waiting_.begin(), waiting_.end(),
                                        [](const auto& a, const auto& b) { return a->due < b->due; });
    return first != waiting_.end() && (*first)->due <= limit ? *first : nullptr;
}

void TimerTable::run(TimedWork& timed) {
    if (!timed.cancelled) {
        running_ = &timed;
        run_(timed.work);
        running_ = nullptr;
    }
    if (timed.cancelled || timed.interval == Duration::zero()) return remove(timed);
    timed.due += ((now_() - timed.due) / timed.interval + 1) * timed.interval;
}

std::optional<TimerTable::WakeUp> TimerTable::nextWakeUp() const {
    if (waiting_.empty()) return std::nullopt;
    Instant earliest = Instant::max(), latest = Instant::max();
    for (const auto& timed : waiting_) {
        earliest = std::min(earliest, timed->due);
        latest = std::min(latest, timed->due + timed->leeway);
    }
    return WakeUp{earliest, latest - earliest};
}

} // namespace quarn
