#pragma once

#include "core/platform.h"
#include "core/sc.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace sysinfo {

/// Throughput, operations, busy share and capacity over all physical drives.
class DiskSampler {
public:
    explicit DiskSampler(SystemRoot root) : root_(std::move(root)) {}

    /// The first call, and the one after a reading that failed, has every rate 0. A failed reading is all
    /// zero. The capacity is asked at most every 30 seconds.
    SCDisk sample(platform::Readers& readers);

    /// The arithmetic of `sample` on counters read at `nowNs`, without the capacity.
    SCDisk advance(const std::vector<platform::DriveCounters>& drives, uint64_t nowNs);

private:
    SystemRoot root_;
    SCDisk last_{};
    std::optional<uint64_t> lastNs_; ///< CLOCK_MONOTONIC_RAW of the previous call, none after a failed one
    std::vector<platform::DriveCounters> drives_;
    platform::DriveCapacity capacity_;
    std::optional<uint64_t> capacityAtNs_;
};

} // namespace sysinfo
