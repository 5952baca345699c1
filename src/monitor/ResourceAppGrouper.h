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

    /// The ten applications that use most of one resource, with up to ten processes each. `processes` ascend
    /// by pid. Processes that are new to it are read of (about 10 µs each).
    ResourceAppList list(ResourceKind kind, std::span<const ProcInfo> processes, const NetworkRates& network);

    const ProcessOwners& owners() const { return owners_; }
    const AppNameCache& names() const { return names_; }

private:
    ProcessOwners owners_;
    AppNameCache names_;
    std::function<double()> wallSeconds_;
    uint64_t revision_ = 0;
};

} // namespace quarn
