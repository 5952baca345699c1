#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sysinfo {

/// One logical CPU that is online, as the kernel describes it.
struct LogicalCpu {
    enum class Class { unknown, performance, efficiency };
    enum class CacheType { data, instruction, unified };
    struct Cache {
        uint32_t level = 0;
        CacheType type = CacheType::unified;
        uint64_t bytes = 0;
        std::string sharedBy; ///< the CPUs that share it, as text: equal for one and the same cache
    };

    uint32_t id = 0;
    std::string core;                   ///< equal for the threads of one core
    Class kind = Class::unknown;        ///< where the kernel tells the kinds of a hybrid processor apart
    std::optional<uint64_t> capacity;   ///< relative computing power
    std::optional<uint64_t> maxFreqKHz; ///< highest frequency
    std::optional<uint64_t> baseFreqKHz;
    std::vector<Cache> caches;
};

namespace platform {
/// The CPUs that are online, ascending by number; numbers may be missing, the first need not be 0.
std::vector<LogicalCpu> readLogicalCpus(const SystemRoot& root);
} // namespace platform

/// What a machine's processors amount to; 0 where unknown.
struct CpuLayout {
    uint32_t logical = 0;
    uint32_t physical = 0;
    uint32_t performance = 0; ///< cores; 0, as the next, on a processor with one kind of core
    uint32_t efficiency = 0;
    uint64_t l1iCache = 0; ///< bytes, of one performance core
    uint64_t l1dCache = 0;
    uint64_t l2Cache = 0;  ///< of the one cache that a performance core uses
    uint64_t l2CacheE = 0; ///< the same of an efficiency core
    uint64_t l3Cache = 0;  ///< the sum over the machine
    uint64_t baseClockHz = 0;
};

/// Counts cores and caches. Where the kernel does not name the kinds of cores, the weakest are efficiency
/// cores when they stand at under four fifths of the strongest, by capacity or else by highest frequency:
/// smaller differences are favoured cores of one kind.
CpuLayout deriveCpuLayout(std::span<const LogicalCpu> cpus);

} // namespace sysinfo
