#pragma once

#include "core/platform.h"

#include <vector>

namespace sysinfo {

/// CPU load of the whole machine and of each logical CPU, in percent.
struct CpuStats {
    double total = 0; ///< user + system
    double user = 0;  ///< nice time included
    double system = 0;
    double idle = 100.0;
    std::vector<double> perCore; ///< busy share of each logical CPU
    std::vector<double> perCoreSystem;
};

/// Turns the kernel's cumulative CPU times into shares of the time since the previous sample.
class CpuSampler {
public:
    /// Reads the counters and derives. A failed read answers "idle" with empty lists and keeps the baseline.
    CpuStats sample(platform::Readers& readers);

    /// The arithmetic of `sample`: shares between the previous ticks and `current`, which becomes the
    /// baseline. Primes (all zero, idle 100) at first and when the set of CPUs changed.
    CpuStats advance(platform::CpuTicks& current);

private:
    platform::CpuTicks previous_;
    platform::CpuTicks current_;
};

/// The increment of one tick counter: the 32-bit difference, so that a counter that wrapped still yields its
/// small step; 0 when the counter went down, as idle and iowait may on Linux.
uint32_t tickIncrement(uint64_t previous, uint64_t current);

} // namespace sysinfo
