#include "core/linux/GpuNames.h"

#include "core/CleanText.h"
#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/GpuDevices.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sysinfo::platform {

namespace {

using Row = std::pair<std::string_view, std::string_view>;

/// Drivers of GPUs that have no number on a bus.
constexpr std::array<Row, 10> driverNames{{
    {"asahi", "Apple GPU"},
    {"etnaviv", "Vivante GPU"},
    {"lima", "Arm Mali"},
    {"msm", "Qualcomm Adreno"},
    {"msm_dpu", "Qualcomm Adreno"},
    {"panfrost", "Arm Mali"},
    {"panthor", "Arm Mali"},
    {"powervr", "PowerVR GPU"},
    {"v3d", "Broadcom VideoCore"},
    {"virtio_gpu", "Virtio GPU"},
}};

std::string_view shortVendor(uint32_t vendor) {
    switch (vendor) {
    case pciVendorAmd: return "AMD";
    case pciVendorNvidia: return "NVIDIA";
    case pciVendorIntel: return "Intel";
    default: return {};
    }
}

uint32_t hexWord(std::string_view word) { return scutil::toNumber<uint32_t>(word, 16).value_or(UINT32_MAX); }

/// What stands in the last brackets of `name`, else all of it.
std::string_view boxName(std::string_view name) {
    const size_t open = name.rfind('[');
    if (open == std::string_view::npos || !name.ends_with(']')) return name;
    return name.substr(open + 1, name.size() - open - 2);
}

std::string join(std::string_view vendor, std::string_view name) {
    if (vendor.empty() || name.starts_with(vendor)) return scutil::cleanText(name);
    return scutil::cleanText(std::string(vendor) + ' ' + std::string(name));
}

/// The name that NVIDIA's driver shows of a GPU that it drives.
std::string nvidiaModel(const SystemRoot& root, const GpuDevice& gpu) {
    if (gpu.driver != "nvidia" || !isAwake(root, gpu)) return {};
    const std::string text =
        readTable(root.path("proc/driver/nvidia/gpus/" + gpu.slot + "/information")).value_or("");
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = scutil::takeLine(rest);
        if (scutil::takeUntil(line, ':') != "Model") continue;
        const std::string name = scutil::cleanText(line);
        return name == "Unknown" ? std::string() : name;
    }
    return {};
}

std::string tableName(const SystemRoot& root, const GpuDevice& gpu) {
    if (gpu.vendor == pciVendorAmd)
        if (const auto table = readTable(root.path("usr/share/libdrm/amdgpu.ids")))
            if (auto name = nameInAmdgpuIds(*table, gpu.device, gpu.revision); !name.empty()) return name;
    for (const std::string_view file : {"usr/share/misc/pci.ids", "usr/share/hwdata/pci.ids"})
        if (const auto table = readTable(root.path(file)))
            if (auto name = nameInPciIds(*table, gpu.vendor, gpu.device); !name.empty()) return name;
    return {};
}

} // namespace

std::string nameInPciIds(std::string_view table, uint32_t vendor, uint32_t device) {
    std::string_view vendorName;
    while (!table.empty()) {
        std::string_view line = scutil::takeLine(table);
        if (line.empty() || line.front() == '#') continue;
        const bool isDevice = line.starts_with('\t');
        if (isDevice == vendorName.empty()) {
            if (!isDevice) break; // the maker's devices ended
            continue;
        }
        if (line.starts_with("\t\t")) continue;
        if (hexWord(scutil::takeWord(line)) != (isDevice ? device : vendor)) continue;
        const std::string_view name = scutil::trimmed(line);
        if (isDevice) return join(vendorName, boxName(name));
        vendorName = shortVendor(vendor).empty() ? name : shortVendor(vendor);
    }
    return {};
}

std::string nameInAmdgpuIds(std::string_view table, uint32_t device, uint32_t revision) {
    while (!table.empty()) {
        std::string_view line = scutil::takeLine(table);
        if (line.starts_with('#')) continue;
        if (hexWord(scutil::trimmed(scutil::takeUntil(line, ','))) != device) continue;
        if (hexWord(scutil::trimmed(scutil::takeUntil(line, ','))) != revision) continue;
        return scutil::cleanText(line);
    }
    return {};
}

std::string nameGpu(const SystemRoot& root, const GpuDevice& gpu) {
    if (gpu.vendor == 0) {
        const auto row = std::find_if(driverNames.begin(), driverNames.end(),
                                      [&](const Row& candidate) { return candidate.first == gpu.driver; });
        return row != driverNames.end() ? std::string(row->second) : std::string();
    }
    const auto product = readAttribute(root.path(gpu.folder + "product_name"));
    if (product && !product->empty()) return join(shortVendor(gpu.vendor), *product);
    if (auto name = nvidiaModel(root, gpu); !name.empty()) return join("NVIDIA", name);
    if (auto name = tableName(root, gpu); !name.empty()) return name;
    constexpr std::string_view digits = "0123456789abcdef";
    std::string number = "0000";
    for (size_t i = 0; i < 4; ++i) number[i] = digits[(gpu.device >> (12 - 4 * i)) & 15];
    return join(shortVendor(gpu.vendor), "GPU " + number);
}

} // namespace sysinfo::platform
