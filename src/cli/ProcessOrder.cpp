#include "cli/ProcessOrder.h"

#include <algorithm>
#include <optional>

namespace quarn::cli {
namespace {

/// The figure by which a process is ranked, −1 when it is not known.
double figure(const ProcInfo& process, ProcessOrder order, const Known& known) {
    if (!process.accessible) return -1;
    switch (order) {
    case ProcessOrder::cpu: return known.processRates ? process.cpuPercent : -1;
    case ProcessOrder::memory: return static_cast<double>(process.memBytes);
    case ProcessOrder::disk: return diskRate(process, known).value_or(-1);
    default: return 0;
    }
}

bool comesBefore(const ProcInfo& a, const ProcInfo& b, ProcessOrder order, const Known& known) {
    if (order == ProcessOrder::name) {
        if (const auto by = a.name.view().compare(b.name.view()); by != 0) return by < 0;
    } else if (order != ProcessOrder::pid) {
        const double left = figure(a, order, known), right = figure(b, order, known);
        if (left != right) return left > right;
    }
    return a.pid < b.pid;
}

} // namespace

std::optional<double> diskRate(const ProcInfo& process, const Known& known) {
    if (!process.accessible || !process.ioKnown || !known.processRates) return {};
    return process.diskReadRate + process.diskWriteRate;
}

std::vector<const ProcInfo*> ordered(const SharedList<ProcInfo>& processes, ProcessOrder order, size_t limit,
                                     const Known& known) {
    std::vector<const ProcInfo*> list;
    list.reserve(processes.size());
    for (const ProcInfo& process : processes) list.push_back(&process);
    limit = std::min(limit, list.size());
    std::partial_sort(
        list.begin(), list.begin() + static_cast<ptrdiff_t>(limit), list.end(),
        [&](const ProcInfo* a, const ProcInfo* b) { return comesBefore(*a, *b, order, known); });
    list.resize(limit);
    return list;
}

} // namespace quarn::cli
