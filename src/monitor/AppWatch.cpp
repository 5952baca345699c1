#include "monitor/AppWatch.h"

#include <utility>

namespace quarn {

AppWatch::AppWatch(Queue& queue, Executor& main, std::shared_ptr<AppOwnerIndex> index)
    : queue_(queue), main_(main), index_(index), grouper_(std::move(index)) {}

AppWatch::~AppWatch() {
    waiting_.set({});
    alive_.reset();
    queue_.sync([] {}); // what is still posted finds nothing to do, and is over when this returns
}

void AppWatch::take(const Snapshot& snapshot) {
    if (std::exchange(takenGeneration_, snapshot.processGeneration) == snapshot.processGeneration) return;
    const bool isFirst = waiting_.withValue(
        [&](auto& waiting) { return !std::exchange(waiting, std::optional(snapshot)).has_value(); });
    if (isFirst) queue_.async([this] { work(); });
}

void AppWatch::work() {
    auto snapshot = waiting_.withValue([](auto& waiting) { return std::exchange(waiting, std::nullopt); });
    if (!snapshot) return;
    worked_ = std::move(snapshot);
    const std::span processes(worked_->processes.data(), worked_->processes.size());
    const auto activity = counters_.sample(processes, grouper_.update(processes));
    for (const auto& observer : activityObservers_) observer(worked_->timestamp, activity);
    if (listUsers_ > 0) makeList();
}

/// The list is made from the latest snapshot worked at, whose owners are known.
void AppWatch::makeList() {
    const std::span processes(worked_->processes.data(), worked_->processes.size());
    auto list = std::make_shared<const ResourceAppList>(
        grouper_.list(ResourceKind::cpu, processes, {}, ResourceAppGrouper::Limits::none()));
    main_.async([this, alive = std::weak_ptr(alive_), list = std::move(list)]() mutable {
        if (alive.lock()) publish(std::move(list));
    });
}

/// The first who wants a list gets it without waiting for the next process list.
void AppWatch::retainList() {
    if (listUsers_++ > 0) return;
    queue_.async([this, alive = std::weak_ptr(alive_)] {
        if (alive.lock() && worked_ && listUsers_ > 0) makeList();
    });
}

void AppWatch::publish(std::shared_ptr<const ResourceAppList> list) {
    latest_ = std::move(list);
    for (const auto& observer : listObservers_) observer();
}

} // namespace quarn
