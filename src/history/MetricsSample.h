#pragma once

#include "monitor/Snapshot.h"

#include <cstdint>
#include <optional>

namespace quarn {

/// What the long-term history takes of one snapshot.
struct MetricsSample {
    MetricsSample() = default;
    explicit MetricsSample(const Snapshot& snapshot);

    WallTime time{};
    double cpuPercent = 0;   ///< 100 is every core
    uint64_t memoryUsed = 0; ///< bytes; 0 when the machine does not tell its memory
    uint64_t swapUsed = 0;
    uint64_t diskRead = 0; ///< this and the next three: bytes since boot, over all devices
    uint64_t diskWrite = 0;
    uint64_t networkIn = 0;
    uint64_t networkOut = 0;
    std::optional<double> watts; ///< of the whole machine
};

} // namespace quarn
