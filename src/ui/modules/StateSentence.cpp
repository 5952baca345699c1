#include "ui/modules/StateSentence.h"

#include "monitor/ResourceAppList.h"
#include "ui/modules/BusiestProgram.h"

#include <algorithm>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr double noticeable = 1; ///< percent of a core from which on something is worth naming

constexpr double leastBusy = 0.05; ///< cores; less would read as 0.0

/// "1.9"; from a hundred on whole cores.
std::string busyCores(double busy) { return fmt::format("{:.{}f}", busy, busy < 99.95 ? 1 : 0); }

std::optional<BusyProgram> busiest(const Snapshot& snapshot, const Known& known,
                                   const ResourceAppList* apps) {
    if (!apps) return busiestProgram(snapshot.processes, known);
    const auto& all = apps->apps;
    const auto most = std::max_element(all.begin(), all.end(), [](const auto& a, const auto& b) {
        return a.usage.cpuPercent < b.usage.cpuPercent;
    });
    if (most == all.end()) return {};
    return BusyProgram{most->name, most->usage.cpuPercent};
}

} // namespace

std::string stateSentence(const Snapshot& snapshot, const Known& known, const ResourceAppList* apps) {
    if (!known.cpu) return {};
    const size_t cores = snapshot.cpu.perCore.size();
    const double busy = snapshot.cpu.total / 100 * static_cast<double>(cores);
    if (busy < leastBusy)
        return cores == 1 ? "The core is idle" : fmt::format("All {} cores are idle", cores);
    std::string sentence = cores == 1 ? fmt::format("The core is {:.0f} % busy", snapshot.cpu.total)
                                      : fmt::format("{} of {} cores busy", busyCores(busy), cores);
    const auto top = busiest(snapshot, known, apps);
    if (top && top->cpuPercent >= noticeable) sentence += fmt::format("; {} uses most", top->name.view());
    return sentence;
}

} // namespace quarn
