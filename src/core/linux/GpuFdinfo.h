#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// What one engine of a GPU did for one client so far. Drivers count time, or cycles, or both.
struct DrmEngine {
    std::string name;
    uint32_t capacity = 1; ///< how many such engines the GPU has
    std::optional<uint64_t> busyNs;
    std::optional<uint64_t> cycles;
    std::optional<uint64_t> totalCycles; ///< that the engine could have worked
    uint64_t maxHz = 0;
};

/// The usage statistics of one open graphics device: the `drm-` lines of a `fdinfo` file.
struct DrmUsage {
    std::string driver;
    std::string slot;                 ///< on the PCI bus; empty elsewhere
    std::optional<uint64_t> clientId; ///< descriptors of one number are one client
    std::vector<DrmEngine> engines;
    std::optional<uint64_t> residentBytes; ///< over all memory regions
    std::optional<uint64_t> totalBytes;
};

/// nullopt for a descriptor that is no graphics device.
std::optional<DrmUsage> parseDrmUsage(std::string_view text);

} // namespace sysinfo::platform
