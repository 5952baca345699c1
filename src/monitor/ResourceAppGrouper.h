#pragma once

#include "monitor/AppNameCache.h"
#include "monitor/ProcessOwners.h"
#include "monitor/ResourceAppList.h"

namespace quarn {

/// Seconds since the epoch, now.
double wallSeconds();

/// Turns process lists into lists of applications; kept by its user between calls, since it remembers the
/// owners of processes. Belongs to one thread.
class ResourceAppGrouper {
public:
    /// The index may be shared with others. `wallSeconds` is the time since the epoch.
    explicit ResourceAppGrouper(std::shared_ptr<AppOwnerIndex> index,
                                std::function<double()> wallSeconds = quarn::wallSeconds);

    struct Limits {
        size_t apps = 10;
        size_t processes = 10; ///< of each application
        static constexpr Limits none() { return {SIZE_MAX, SIZE_MAX}; }
    };
    /// The applications that use most of one resource. `processes` ascend by pid. Processes that are new to
    /// it are read of (about 10 µs each).
    ResourceAppList list(ResourceKind kind, std::span<const ProcInfo> processes,
                         const NetworkRates& network) {
        return list(kind, processes, network, Limits());
    }
    ResourceAppList list(ResourceKind kind, std::span<const ProcInfo> processes, const NetworkRates& network,
                         Limits limits);

    /// Notes a list without grouping it: one owner for each process, in the same order, valid until the next
    /// list.
    std::span<const ProcessOwner> update(std::span<const ProcInfo> processes) {
        return owners_.update(processes, wallSeconds_());
    }
    const AppNameCache& names() const { return names_; }

private:
    ProcessOwners owners_;
    AppNameCache names_;
    std::function<double()> wallSeconds_;
    uint64_t revision_ = 0;
};

} // namespace quarn
