#pragma once

#include <cstdint>

namespace quarn {

/// What the whole machine did in one period: sums over the time that was observed, and peaks. Two of them
/// are merged column by column, see MetricsColumns.h.
struct SystemMetrics {
    double seconds = 0;           ///< observed
    double cpuSeconds = 0;        ///< busy, of the whole machine: percent / 100 × seconds
    double peakCPUPercent = 0;    ///< 100 is every core
    double memoryByteSeconds = 0; ///< over `seconds` it is the mean use
    int64_t peakMemoryBytes = 0;
    int64_t peakSwapBytes = 0;
    int64_t diskReadBytes = 0;
    int64_t diskWriteBytes = 0;
    int64_t networkInBytes = 0;
    int64_t networkOutBytes = 0;
    double energyJoules = 0;
    double powerSeconds = 0; ///< for which the power was known; `energyJoules` over it is the mean power

    bool operator==(const SystemMetrics&) const = default;
};

} // namespace quarn
