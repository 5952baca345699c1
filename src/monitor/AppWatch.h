#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "monitor/AppProcessCounters.h"
#include "monitor/ResourceAppGrouper.h"

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace quarn {

/// Follows process lists by application, on a queue of its own, so that no tick waits for the files that tell
/// whom a process belongs to: what each application did goes to the history, and while somebody retains it,
/// the list of all applications to the views.
///
/// Where process lists come faster than they are worked at, some are left out; what their processes did shows
/// with the next one.
class AppWatch {
public:
    /// What applications did since the list before; on the queue. The first list tells only who is there.
    using ActivityObserver = std::function<void(WallTime at, std::span<const AppActivity> apps)>;

    /// `main` is where lists are published. What this refers to must outlive it.
    AppWatch(Queue& queue, Executor& main, std::shared_ptr<AppOwnerIndex> index);
    /// Waits for the work under way. On the main executor's thread, not on the queue.
    ~AppWatch();
    AppWatch(const AppWatch&) = delete;
    AppWatch& operator=(const AppWatch&) = delete;

    /// Before the first `take`.
    void observeActivity(ActivityObserver observer) { activityObservers_.push_back(std::move(observer)); }
    /// Looks at a snapshot; one whose process list is known already costs nothing. Returns at once. One
    /// thread.
    void take(const Snapshot& snapshot);

    /// All applications with all their processes, those that use most of the CPU first, as of the latest list
    /// worked at while it was retained; null before. On the main executor's thread, as all below.
    std::shared_ptr<const ResourceAppList> latest() const { return latest_; }
    /// Called whenever `latest` changed.
    void observeList(std::function<void()> observer) { listObservers_.push_back(std::move(observer)); }

    AppOwnerIndex& index() const { return *index_; } ///< any thread

private:
    friend class AppListRetention;

    void retainList();
    void releaseList() { --listUsers_; }
    void work();
    void makeList();
    void publish(std::shared_ptr<const ResourceAppList> list);

    Queue& queue_;
    Executor& main_;
    std::shared_ptr<AppOwnerIndex> index_;
    std::vector<ActivityObserver> activityObservers_;
    int64_t takenGeneration_ = -1;
    Locked<std::optional<Snapshot>> waiting_; ///< the newest list that nobody has worked at
    std::atomic<int> listUsers_{0};

    // On the queue.
    ResourceAppGrouper grouper_;
    AppProcessCounters counters_;
    std::optional<Snapshot> worked_; ///< the latest one

    // On the main executor's thread.
    std::shared_ptr<const ResourceAppList> latest_;
    std::vector<std::function<void()>> listObservers_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

/// A view's wish for the list of applications, for as long as this object lives. On the main executor's
/// thread.
class AppListRetention {
public:
    explicit AppListRetention(AppWatch& watch) : watch_(watch) { watch_.retainList(); }
    ~AppListRetention() { watch_.releaseList(); }
    AppListRetention(const AppListRetention&) = delete;
    AppListRetention& operator=(const AppListRetention&) = delete;

private:
    AppWatch& watch_;
};

} // namespace quarn
