#pragma once

#include "core/Battery.h"
#include "core/HardwareInfo.h"
#include "monitor/Snapshot.h"

#include <optional>
#include <string_view>

namespace quarn {

/// The neural engine of a machine, for the two fields that its own reader gives.
struct NeuralEngine {
    int64_t cores = 0;
    std::string arch;
};

Hardware toHardware(const sysinfo::HardwareInfo& info, const sysinfo::BatteryInfo& battery,
                    const NeuralEngine& engine);

/// Absent on a machine without a battery.
std::optional<Battery> toBattery(const sysinfo::BatteryInfo& info);

/// What people call a model: the family of an Apple identifier ("Mac14,2" is a "MacBook Air", an identifier
/// of no known family a "Mac", as is a machine that tells no model); any other maker's model is its own name.
std::string modelFamily(std::string_view model);

} // namespace quarn
