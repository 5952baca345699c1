#pragma once

#include "core/GpuDevice.h"

#include <string_view>

namespace sysinfo::platform {

/// The name of a device in the text of pci.ids, without the maker's legal form and with the name on the box
/// where the table has one in brackets: "Intel Iris Xe Graphics". Empty when the table lacks the device.
std::string nameInPciIds(std::string_view table, uint32_t vendor, uint32_t device);

/// The name in the text of amdgpu.ids, which tells apart what shares one device number; empty when not there.
std::string nameInAmdgpuIds(std::string_view table, uint32_t device, uint32_t revision);

/// A name for any GPU: from the driver, from these tables where they are installed, and otherwise the maker
/// with the device's number, or what the driver is for.
std::string nameGpu(const SystemRoot& root, const GpuDevice& gpu);

} // namespace sysinfo::platform
