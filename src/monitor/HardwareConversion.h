#pragma once

#include "core/Battery.h"
#include "core/HardwareInfo.h"
#include "core/NeuralEngine.h"
#include "monitor/Snapshot.h"

#include <optional>
#include <string_view>

namespace quarn {

Hardware toHardware(const sysinfo::HardwareInfo& info, const sysinfo::BatteryInfo& battery,
                    const std::optional<sysinfo::NeuralEngine>& engine);

/// Absent on a machine without a battery.
std::optional<Battery> toBattery(const sysinfo::BatteryInfo& info);

/// What people call a model: the family of an Apple identifier ("Mac14,2" is a "MacBook Air", an identifier
/// of no known family a "Mac", as is a machine that tells no model); any other maker's model is its own name.
std::string modelFamily(std::string_view model);

} // namespace quarn
