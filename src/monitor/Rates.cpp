#include "monitor/Rates.h"

#include <algorithm>

namespace quarn {

double rateBetween(uint64_t previous, uint64_t current, double elapsed) {
    return elapsed > 0 && current > previous ? static_cast<double>(current - previous) / elapsed : 0;
}

SystemRates deriveRates(const SystemCounters& previous, const SystemCounters& current, double elapsed) {
    const auto rate = [&](uint64_t SCMem::*counter) {
        return rateBetween(previous.mem.*counter, current.mem.*counter, elapsed);
    };
    SystemRates rates;
    rates.pageIn = rate(&SCMem::pageIns);
    rates.pageOut = rate(&SCMem::pageOuts);
    rates.swapIn = rate(&SCMem::swapIns);
    rates.swapOut = rate(&SCMem::swapOuts);
    rates.faults = rate(&SCMem::faults);
    rates.cowFaults = rate(&SCMem::cowFaults);
    rates.compressions = rate(&SCMem::compressions);
    rates.decompressions = rate(&SCMem::decompressions);
    rates.contextSwitches = rateBetween(previous.contextSwitches, current.contextSwitches, elapsed);
    if (const double lookups = rate(&SCMem::lookups); lookups > 0)
        rates.cacheHitRatio = std::min(rate(&SCMem::hits) / lookups, 1.0);
    return rates;
}

void applyIORates(std::vector<ProcInfo>& processes, const std::vector<ProcessIO>& previous, double elapsed) {
    auto before = previous.begin();
    for (auto& process : processes) {
        while (before != previous.end() && before->pid < process.pid) ++before;
        if (before == previous.end()) break;
        if (before->pid != process.pid || before->start != process.startTimeMicros) continue;
        if (!before->accessible || !process.accessible) continue;
        if (before->ioKnown && process.ioKnown) {
            process.diskReadRate = rateBetween(before->read, process.diskRead, elapsed);
            process.diskWriteRate = rateBetween(before->write, process.diskWrite, elapsed);
        }
        process.cswRate = rateBetween(before->contextSwitches, process.contextSwitches, elapsed);
        if (before->energy && process.energyNj && elapsed > 0)
            process.watts = rateBetween(*before->energy, *process.energyNj, elapsed) / 1e9;
    }
}

void keepCounters(const std::vector<ProcInfo>& processes, std::vector<ProcessIO>& out) {
    out.clear();
    out.reserve(processes.size());
    for (const auto& p : processes)
        out.push_back({p.diskRead, p.diskWrite, p.contextSwitches, p.energyNj, p.startTimeMicros, p.pid,
                       p.accessible, p.ioKnown});
}

void applyDiskRates(std::vector<DiskDevice>& disks, const SharedList<DiskDevice>& previous, double elapsed) {
    for (auto& disk : disks) {
        const auto before = std::find_if(previous.begin(), previous.end(),
                                         [&](const DiskDevice& d) { return d.bsd == disk.bsd; });
        if (before == previous.end()) continue;
        disk.readRate = rateBetween(before->readBytes, disk.readBytes, elapsed);
        disk.writeRate = rateBetween(before->writeBytes, disk.writeBytes, elapsed);
    }
}

} // namespace quarn
