#pragma once

#include "core/GpuDevice.h"

#include <string_view>

namespace sysinfo::platform {

/// What a GPU's `uevent` file says: driver, PCI numbers and slot.
GpuDevice parseGpuUevent(std::string_view text);

/// Whether the device may be read: not one that sleeps, which reading could wake.
bool isAwake(const SystemRoot& root, const GpuDevice& gpu);

} // namespace sysinfo::platform
