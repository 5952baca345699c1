#include "ui/modules/BusiestProgram.h"

#include <unordered_map>

namespace quarn {

std::optional<BusyProgram> busiestProgram(const SharedList<ProcInfo>& processes, const Known& known) {
    if (!known.processRates) return {};
    std::unordered_map<std::string_view, double> used;
    used.reserve(processes.size());
    for (const ProcInfo& process : processes)
        if (process.accessible) used[process.name.view()] += process.cpuPercent;
    std::optional<std::pair<std::string_view, double>> busiest;
    for (const auto& each : used)
        if (!busiest || each.second > busiest->second ||
            (each.second == busiest->second && each.first < busiest->first))
            busiest = each;
    if (!busiest) return {};
    return BusyProgram{busiest->first, busiest->second};
}

} // namespace quarn
