#pragma once

#include "monitor/PowerReadings.h"
#include "monitor/SamplingPlan.h"

#include <limits>

namespace quarn {

/// What one auxiliary job reads of power.
struct PowerReads {
    bool system = false; ///< the machine's total and its input
    bool split = false;  ///< the local energy counters
    bool helper = false; ///< the privileged helper's record
    /// The helper is asked without a current record at hand: for the first time, or again after it fell
    /// silent. The local split is read beside it, so that there is no hole if it does not answer.
    bool helperResumes = false;
    /// How long the readings of this job stay current: until the next ones must have come, at least 6 s.
    double splitLifetime = PowerReadings::currentWindow;
    double systemLifetime = PowerReadings::currentWindow;

    bool any() const { return system || split || helper; }
    bool operator==(const PowerReads&) const = default;
};

/// What the job brought back.
struct PowerSample {
    std::optional<double> systemWatts;
    std::optional<double> dcWatts; ///< direct-current input; absent where there is none
    std::optional<SCPower> split;
    std::optional<HelperPower> helper; ///< absent also when the helper did not answer in time
};

/// What the power readings are wanted for.
struct PowerDemand {
    bool split = false;  ///< somebody looks at the split by domain
    bool helper = false; ///< the helper may be asked
};

/// When each source of power figures was read last, and what came of it. A value; belongs to the sampler
/// queue. Times are seconds on the Monitor's steady scale.
struct PowerSchedule {
    static constexpr double never = -std::numeric_limits<double>::infinity();

    PowerReadings readings;
    std::optional<double> dcWatts;
    double systemAt = never;
    double splitAt = never;
    double helperAt = never;
    double splitLifetime = PowerReadings::currentWindow;
    bool systemLanded = false; ///< a total has arrived at least once

    /// What is due at `at`. The total always (Resource::systemPower); the helper's record and the local split
    /// (Resource::powerSplit) only while somebody looks at the split, and the local one only while no current
    /// record of the helper makes it needless.
    PowerReads due(double at, const SamplingPlan& plan, const PowerDemand& demand) const;

    /// Stores what the job that was asked for `reads` brought back at `at`. What failed keeps its former
    /// reading, which ages. A helper that resumes takes over from the local split.
    void land(const PowerSample& sample, const PowerReads& reads, double at);
};

} // namespace quarn
