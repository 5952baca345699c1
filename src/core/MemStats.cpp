#include "core/MemStats.h"

#include <algorithm>

namespace sysinfo {

SCMem deriveMemStats(const platform::MemoryCounters& c) {
    SCMem mem{};
    mem.total = c.total;
    mem.pageSize = c.pageSize;
    if (c.statisticsKnown) {
        mem.app = c.internal > c.purgeable ? c.internal - c.purgeable : 0;
        mem.wired = c.wired;
        mem.compressed = c.compressed;
        mem.used = mem.app + mem.wired + mem.compressed;
        mem.cached = c.external + c.purgeable;
        mem.freeBytes = c.free;
        mem.freeCount = c.free;
        mem.active = c.active;
        mem.inactive = c.inactive;
        mem.speculative = c.speculative;
        mem.purgeable = c.purgeable;
        mem.external = c.external;
        mem.pageIns = c.pageIns;
        mem.pageOuts = c.pageOuts;
        mem.faults = c.faults;
        mem.cowFaults = c.cowFaults;
        mem.lookups = c.lookups;
        mem.hits = c.hits;
        mem.compressions = c.compressions;
        mem.decompressions = c.decompressions;
        mem.swapIns = c.swapIns;
        mem.swapOuts = c.swapOuts;
    }
    mem.swapTotal = c.swapTotal;
    mem.swapFree = std::min(c.swapFree, c.swapTotal);
    mem.swapUsed = mem.swapTotal - mem.swapFree;
    mem.pressureLevel = std::max(c.pressureLevel, 1u);
    mem.freePercent = c.freePercent;
    return mem;
}

SCMem readMemStats(platform::Readers& readers) {
    platform::MemoryCounters counters;
    platform::readMemoryCounters(readers, counters);
    return deriveMemStats(counters);
}

} // namespace sysinfo
