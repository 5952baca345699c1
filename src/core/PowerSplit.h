#pragma once

#include "core/sc.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo {

/// One counter of energy spent, in units of its own.
struct EnergyChannel {
    std::string
        id; ///< names the counter; changes when its figures can no longer be compared with earlier ones
    std::string name; ///< of the domain: "CPU Energy", "GPU", "DRAM", …
    std::string unit; ///< "mJ", "uJ", "µJ", "nJ"; any other text is joules
    int64_t energy = 0;
};

/// All counters at one moment.
using EnergySample = std::vector<EnergyChannel>;

/// What each channel that is in both samples gained: the `energy` of the result is the increase. A channel
/// that fell, or is in one sample only, is left out.
EnergySample energyBetween(const EnergySample& previous, const EnergySample& current);

/// The watts of one channel that gained `energy` units in `seconds`.
double channelWatts(const EnergyChannel& gained, double seconds);

/// Average watts by domain over `seconds`, above 0, in which the channels gained `gained`. Channels of one
/// name add up; names that have no field are left out. `available` when a domain other than image processor
/// and display was measured and processors, GPU, neural engine and memory did not all rest at 0.
SCPower splitPower(std::span<const EnergyChannel> gained, double seconds);

} // namespace sysinfo
