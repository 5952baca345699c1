#pragma once

#include "core/PowerSupply.h"
#include "core/linux/SensorChip.h"

#include <memory>

namespace sysinfo::platform {

/// What the batteries deliver while nothing else feeds the machine, which is what it draws; nullopt
/// otherwise. And what comes in from outside, where an adapter tells. Watts.
std::optional<double> batteryDraw(std::span<const PowerSupply> supplies);
std::optional<double> adapterInput(std::span<const PowerSupply> supplies);

/// The machine's own batteries and adapters as a source of "PSTR" and "PDTR"; null when there are none.
std::shared_ptr<SensorChip> openSupplies(const SystemRoot& root);

/// The power domain of the whole machine ("psys") as a source of "PSTR": the energy counter's increase over
/// the time between two readings. Null when there is none; usually only root may read it.
std::shared_ptr<SensorChip> openPlatformEnergy(const SystemRoot& root);

/// Joules counted between two readings of an energy counter in microjoules that starts anew beyond `range`;
/// nullopt when the counter was reset.
std::optional<double> countedJoules(long long before, long long now, long long range);

} // namespace sysinfo::platform
