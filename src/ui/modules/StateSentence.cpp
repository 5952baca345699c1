#include "ui/modules/StateSentence.h"

#include "ui/modules/ProcessGroups.h"

#include <fmt/format.h>

namespace quarn {

namespace {

constexpr double noticeable = 1; ///< percent of a core from which on something is worth naming

constexpr double leastBusy = 0.05; ///< cores; less would read as 0.0

/// "1.9"; from a hundred on whole cores.
std::string busyCores(double busy) { return fmt::format("{:.{}f}", busy, busy < 99.95 ? 1 : 0); }

} // namespace

std::string stateSentence(const Snapshot& snapshot, const Known& known) {
    if (!known.cpu) return {};
    const size_t cores = snapshot.cpu.perCore.size();
    const double busy = snapshot.cpu.total / 100 * static_cast<double>(cores);
    if (busy < leastBusy)
        return cores == 1 ? "The core is idle" : fmt::format("All {} cores are idle", cores);
    std::string sentence = cores == 1 ? fmt::format("The core is {:.0f} % busy", snapshot.cpu.total)
                                      : fmt::format("{} of {} cores busy", busyCores(busy), cores);
    const auto top = topGroups(snapshot.processes, known, GroupOrder::cpu, 1);
    if (!top.empty() && top.front().cpuPercent.value_or(0) >= noticeable)
        sentence += fmt::format("; {} uses most", top.front().name.view());
    return sentence;
}

} // namespace quarn
