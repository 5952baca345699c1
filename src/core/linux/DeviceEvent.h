#pragma once

#include <string_view>

namespace sysinfo::platform {

/// Whether a device event of the kernel ("change@/devices/…" and NUL-separated KEY=value pairs) speaks of a
/// power supply.
bool concernsPowerSupply(std::string_view message);

} // namespace sysinfo::platform
