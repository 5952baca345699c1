#pragma once

#include "core/PowerSupply.h"

#include <functional>
#include <string_view>

namespace sysinfo::platform {

/// The value of `attribute` ("charge_now") in the text of a `uevent` file, where it stands as
/// POWER_SUPPLY_CHARGE_NOW=…; empty when it is not there.
std::string_view ueventValue(std::string_view uevent, std::string_view attribute);

/// Builds one supply from its attributes; `attribute` answers a name with its text, empty when unknown. Texts
/// that are no number ("-NaN"), and figures that cannot be, are absent.
PowerSupply describePowerSupply(std::string_view name,
                                const std::function<std::string(std::string_view)>& attribute);

} // namespace sysinfo::platform
