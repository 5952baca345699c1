#include "ui/modules/ProcessGroups.h"

#include <algorithm>
#include <unordered_map>

namespace quarn {

namespace {

void add(ProcessGroup& group, const ProcInfo& process, const Known& known) {
    ++group.processes;
    if (!process.accessible) return;
    group.memBytes = group.memBytes.value_or(0) + process.memBytes;
    if (known.processRates) group.cpuPercent = group.cpuPercent.value_or(0) + process.cpuPercent;
}

/// By the figure that counts, then by the other one.
bool comesBefore(const ProcessGroup& a, const ProcessGroup& b, GroupOrder order) {
    const bool byCpu = order == GroupOrder::cpu;
    if (byCpu && a.cpuPercent != b.cpuPercent) return a.cpuPercent > b.cpuPercent;
    if (a.memBytes != b.memBytes) return a.memBytes > b.memBytes;
    if (!byCpu && a.cpuPercent != b.cpuPercent) return a.cpuPercent > b.cpuPercent;
    return a.name.view() < b.name.view();
}

} // namespace

std::vector<ProcessGroup> topGroups(const SharedList<ProcInfo>& processes, const Known& known,
                                    GroupOrder order, size_t limit) {
    std::vector<ProcessGroup> groups;
    std::unordered_map<std::string_view, size_t> places;
    places.reserve(processes.size());
    for (const ProcInfo& process : processes) {
        const auto [place, isNew] = places.try_emplace(process.name.view(), groups.size());
        if (isNew) groups.push_back({process.name});
        add(groups[place->second], process, known);
    }
    limit = std::min(limit, groups.size());
    std::partial_sort(groups.begin(), groups.begin() + static_cast<ptrdiff_t>(limit), groups.end(),
                      [order](const auto& a, const auto& b) { return comesBefore(a, b, order); });
    groups.resize(limit);
    return groups;
}

} // namespace quarn
