#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sysinfo {

/// One GPU, as the bus describes it. None of this wakes a sleeping one.
struct GpuDevice {
    std::string name;   ///< for people: "AMD Radeon RX 7900 XTX"; empty when unknown
    std::string driver; ///< "amdgpu", "i915", "nvidia", …; empty when none is bound
    std::string slot;   ///< on the PCI bus, "0000:03:00.0"; empty for a GPU elsewhere
    std::string folder; ///< of its attributes, below the root, with a slash at the end
    uint32_t vendor = 0;
    uint32_t device = 0;
    uint32_t revision = 0;
    uint32_t cores = 0; ///< compute units; 0 when unknown
};

inline constexpr uint32_t pciVendorAmd = 0x1002;
inline constexpr uint32_t pciVendorNvidia = 0x10de;
inline constexpr uint32_t pciVendorIntel = 0x8086;

namespace platform {
/// The graphics devices with a driver in order of their card number, then the display controllers of the PCI
/// bus that have none. Stateless; any thread; some milliseconds, for names are looked up in long tables.
std::vector<GpuDevice> listGpus(const SystemRoot& root);
} // namespace platform

} // namespace sysinfo
