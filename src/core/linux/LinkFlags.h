#pragma once

#include <cstdint>

namespace sysinfo::platform {

/// The platform's LinkFlags for the kernel's IFF_ flags.
uint32_t linkFlags(uint32_t interfaceFlags);

} // namespace sysinfo::platform
