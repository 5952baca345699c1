#pragma once

#include "core/linux/SensorChip.h"

#include <memory>

namespace sysinfo::platform {

/// The chip behind `entry` of sys/class/hwmon; null when it has no sensors, or is the battery of a
/// peripheral, which is no part of this machine.
///
/// Old drivers keep their attributes in the device's folder rather than in their hwmon folder.
std::shared_ptr<SensorChip> openHwmonChip(const SystemRoot& root, const std::string& entry);

/// The thermal zone behind `entry` of sys/class/thermal, as a chip with one temperature; null for anything
/// that is no zone.
std::shared_ptr<SensorChip> openThermalZone(const SystemRoot& root, const std::string& entry);

/// A bound that a chip reports for its sensor: nullopt for the numbers by which drivers say "no limit".
std::optional<double> plausibleLimit(SensorKind kind, double value);

} // namespace sysinfo::platform
