#pragma once

#include "core/platform.h"

namespace sysinfo::platform {

/// The lines of proc/meminfo that are used, in bytes; a line that this kernel lacks stays 0.
struct MemInfo {
    uint64_t memTotal = 0;
    uint64_t memFree = 0;
    std::optional<uint64_t> memAvailable;
    uint64_t buffers = 0;
    uint64_t cached = 0;
    uint64_t active = 0;
    uint64_t inactive = 0;
    uint64_t anonPages = 0;
    uint64_t shmem = 0;
    std::optional<uint64_t> kReclaimable;
    uint64_t sReclaimable = 0;
    uint64_t sUnreclaim = 0;
    uint64_t kernelStack = 0;
    uint64_t pageTables = 0;
    uint64_t secPageTables = 0;
    uint64_t percpu = 0;
    uint64_t hugetlb = 0;
    uint64_t zswap = 0;
    uint64_t swapTotal = 0;
    uint64_t swapFree = 0;
};
/// False when there is no MemTotal.
bool parseMemInfo(std::string_view text, MemInfo& out);

/// The counters of proc/vmstat that are used, as the kernel counts them.
struct VmStat {
    uint64_t pgpgin = 0; ///< KiB
    uint64_t pgpgout = 0;
    uint64_t pswpin = 0; ///< pages
    uint64_t pswpout = 0;
    uint64_t pgfault = 0;
    uint64_t zswpin = 0; ///< pages
    uint64_t zswpout = 0;
};
VmStat parseVmStat(std::string_view text);

/// Share of the last ten seconds in which some, and all, tasks waited for memory; percent.
struct MemoryPressure {
    double someAvg10 = 0;
    double fullAvg10 = 0;
};
MemoryPressure parseMemoryPressure(std::string_view text);

/// 1 normal, 2 warning (under a tenth of memory available, or tasks wait for memory a tenth of the time),
/// 4 critical (under a 25th available, or all tasks wait that long).
uint32_t memoryPressureLevel(uint64_t available, uint64_t total, const MemoryPressure& pressure);

} // namespace sysinfo::platform
