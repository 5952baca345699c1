#include "core/linux/GpuDevices.h"

#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/GpuNames.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

/// Drivers of screens that compute nothing.
constexpr std::array<std::string_view, 5> displayOnly{"simple-framebuffer", "simpledrm", "vc4-drm", "vkms",
                                                      "udl"};

uint32_t hexAttribute(const std::string& path) { return static_cast<uint32_t>(readNumber(path).value_or(0)); }

std::optional<uint32_t> cardNumber(std::string_view name) {
    if (!name.starts_with("card")) return {};
    return scutil::toNumber<uint32_t>(name.substr(4));
}

/// Compute units as the compute driver counts them, found by the GPU's place on the bus.
uint32_t computeUnits(const SystemRoot& root, const GpuDevice& gpu) {
    const std::string nodes = "sys/class/kfd/kfd/topology/nodes/";
    for (const std::string& node : listFolder(root.path(nodes))) {
        std::string_view rest;
        const auto text = readTable(root.path(nodes + node + "/properties"));
        if (!text) continue;
        uint64_t simds = 0, simdsPerUnit = 0, location = 0, domain = 0;
        for (rest = *text; !rest.empty();) {
            std::string_view line = scutil::takeLine(rest);
            const std::string_view key = scutil::takeWord(line);
            uint64_t* field = key == "simd_count"    ? &simds
                              : key == "simd_per_cu" ? &simdsPerUnit
                              : key == "location_id" ? &location
                              : key == "domain"      ? &domain
                                                     : nullptr;
            if (field) *field = scutil::takeNumber(line);
        }
        if (simds == 0 || simdsPerUnit == 0) continue;
        std::array<char, 32> slot{};
        std::snprintf(slot.data(), slot.size(), "%04x:%02x:%02x.%x", static_cast<unsigned>(domain & 0xffff),
                      static_cast<unsigned>(location >> 8 & 0xff),
                      static_cast<unsigned>(location >> 3 & 0x1f), static_cast<unsigned>(location & 7));
        if (gpu.slot == slot.data()) return static_cast<uint32_t>(simds / simdsPerUnit);
    }
    return 0;
}

GpuDevice describe(const SystemRoot& root, const std::string& folder) {
    GpuDevice gpu = parseGpuUevent(readTable(root.path(folder + "uevent")).value_or(""));
    gpu.folder = folder;
    if (gpu.vendor == 0) {
        gpu.vendor = hexAttribute(root.path(folder + "vendor"));
        gpu.device = hexAttribute(root.path(folder + "device"));
        // Devices on other buses number their makers otherwise.
        if (gpu.vendor > 0xffff) gpu.vendor = 0;
    }
    gpu.revision = hexAttribute(root.path(folder + "revision"));
    gpu.name = nameGpu(root, gpu);
    if (gpu.driver == "amdgpu") gpu.cores = computeUnits(root, gpu);
    return gpu;
}

} // namespace

GpuDevice parseGpuUevent(std::string_view text) {
    GpuDevice gpu;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const std::string_view key = scutil::takeUntil(line, '=');
        std::string_view value = scutil::trimmed(line);
        if (key == "DRIVER") gpu.driver = value;
        if (key == "PCI_SLOT_NAME") gpu.slot = value;
        if (key == "PCI_ID") {
            gpu.vendor = scutil::toNumber<uint32_t>(scutil::takeUntil(value, ':'), 16).value_or(0);
            gpu.device = scutil::toNumber<uint32_t>(value, 16).value_or(0);
        }
    }
    return gpu;
}

bool isAwake(const SystemRoot& root, const GpuDevice& gpu) {
    const auto status = readAttribute(root.path(gpu.folder + "power/runtime_status"));
    return !status || !status->starts_with("suspend");
}

std::vector<GpuDevice> listGpus(const SystemRoot& root) {
    std::vector<std::pair<uint32_t, std::string>> cards;
    for (const std::string& name : listFolder(root.path("sys/class/drm")))
        if (const auto number = cardNumber(name)) cards.emplace_back(*number, name);
    std::sort(cards.begin(), cards.end());

    std::vector<GpuDevice> gpus;
    for (const auto& [number, card] : cards) {
        GpuDevice gpu = describe(root, "sys/class/drm/" + card + "/device/");
        if (std::find(displayOnly.begin(), displayOnly.end(), gpu.driver) != displayOnly.end()) continue;
        gpus.push_back(std::move(gpu));
    }
    const std::string bus = "sys/bus/pci/devices/";
    for (const std::string& slot : listFolder(root.path(bus))) {
        const auto deviceClass = readNumber(root.path(bus + slot + "/class")).value_or(0);
        if ((deviceClass >> 16 & 0xff) != 0x03) continue;
        const bool known =
            std::any_of(gpus.begin(), gpus.end(), [&](const GpuDevice& gpu) { return gpu.slot == slot; });
        if (known) continue;
        GpuDevice gpu = describe(root, bus + slot + '/');
        if (gpu.slot.empty()) gpu.slot = slot;
        gpus.push_back(std::move(gpu));
    }
    return gpus;
}

} // namespace sysinfo::platform
