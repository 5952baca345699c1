#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sysinfo::platform {

/// A property ("ID_MODEL") in the record that the device manager keeps of a device under run/udev/data;
/// nullopt when it is not there.
std::optional<std::string_view> udevProperty(std::string_view record, std::string_view name);

/// Undoes the escapes "\x20" of the properties whose names end with _ENC, and trims blanks.
std::string decodeUdev(std::string_view text);

} // namespace sysinfo::platform
