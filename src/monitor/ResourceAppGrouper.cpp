#include "monitor/ResourceAppGrouper.h"

#include <utility>

namespace quarn {

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

ResourceAppGrouper::ResourceAppGrouper(std::shared_ptr<AppOwnerIndex> index,
                                       std::function<double()> wallSeconds)
    : owners_(index),
      names_([index](std::string_view bundle) { return index->identity(bundle).name; }),
      wallSeconds_(std::move(wallSeconds)) {}

ResourceAppList ResourceAppGrouper::list(ResourceKind kind, std::span<const ProcInfo> processes,
                                         const NetworkRates& network, Limits limits) {
    const auto owners = update(processes);
    names_.trim();
    if (std::exchange(revision_, owners_.revision()) != owners_.revision()) names_.clear();
    return ResourceAppList::make(
        kind, processes, network, limits.apps, limits.processes,
        [&](const ProcInfo& process) -> std::string_view {
            const auto& bundle = owners[static_cast<size_t>(&process - processes.data())].bundle;
            return bundle ? bundle->view() : std::string_view();
        },
        [&](std::string_view bundle) { return names_.nameOf(bundle); });
}

} // namespace quarn
