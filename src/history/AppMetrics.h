#pragma once

#include "monitor/AppActivity.h"

#include <cstdint>
#include <string>

namespace quarn {

/// What one application did in one period.
struct AppMetrics {
    std::string name;             ///< for people; empty until it is known
    double seconds = 0;           ///< during which it had processes
    double cpuSeconds = 0;        ///< of one core
    double memoryByteSeconds = 0; ///< over `seconds` it is the mean footprint
    int64_t peakMemoryBytes = 0;
    int64_t diskReadBytes = 0;
    int64_t diskWriteBytes = 0;
    double energyImpact = 0; ///< a score without dimension, from CPU, disk and context switches
    int64_t networkInBytes = 0;
    int64_t networkOutBytes = 0;
    double energyJoules = 0;
    double energySeconds = 0; ///< for which the kernel told its energy

    bool operator==(const AppMetrics&) const = default;

    /// What it did in an interval of `interval` seconds, at whose end it used `activity.memBytes`.
    void add(const AppActivity& activity, double interval);
};

} // namespace quarn
