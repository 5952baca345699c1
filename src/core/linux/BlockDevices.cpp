#include "core/linux/BlockDevices.h"

#include "core/Scan.h"
#include "core/linux/DiskStats.h"
#include "core/linux/Files.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

using scutil::isDigit;
bool isLower(char c) { return c >= 'a' && c <= 'z'; }

/// Takes the leading characters that satisfy `is` off `rest`; false when there is none.
bool skip(std::string_view& rest, bool (*is)(char)) {
    const size_t before = rest.size();
    while (!rest.empty() && is(rest.front())) rest.remove_prefix(1);
    return rest.size() < before;
}

bool skip(std::string_view& rest, std::string_view prefix) {
    if (!rest.starts_with(prefix)) return false;
    rest.remove_prefix(prefix.size());
    return true;
}

/// Devices made of files, memory, other devices or a network, and drives for media that are no disks.
bool isVirtualName(std::string_view name) {
    static constexpr std::array<std::string_view, 17> prefixes{
        "loop", "ram",  "zram", "dm-",    "md",    "nbd", "sr",    "scd",   "fd",
        "zd",   "drbd", "mtd",  "bcache", "ublkb", "rbd", "nullb", "etherd"};
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](std::string_view prefix) { return name.starts_with(prefix); });
}

/// "nvme0c1n1": one of several paths to nvme0n1, which counts for all of them.
bool isNvmePath(std::string_view name) {
    return skip(name, "nvme") && skip(name, isDigit) && skip(name, "c") && skip(name, isDigit) &&
           skip(name, "n");
}

/// "mmcblk0boot0", "mmcblk0rpmb", "mmcblk0gp1": hardware partitions of an eMMC, disks of their own in sysfs.
bool isEmmcPartition(std::string_view name) {
    return skip(name, "mmcblk") && skip(name, isDigit) && !name.empty() && !skip(name, "p");
}

/// A partition is named after its disk and a number, with a "p" between when the disk ends with a digit.
bool isPartitionName(std::string_view name) {
    const size_t end = name.find_last_not_of("0123456789");
    if (end == std::string_view::npos || end + 1 == name.size()) return false;
    if (name[end] == 'p' && end > 0 && isDigit(name[end - 1])) return true;
    static constexpr std::array<std::string_view, 5> letteredDisks{"sd", "hd", "vd", "xvd", "dasd"};
    return std::any_of(letteredDisks.begin(), letteredDisks.end(), [&](std::string_view prefix) {
        std::string_view rest = name;
        return skip(rest, prefix) && skip(rest, isLower) && skip(rest, isDigit) && rest.empty();
    });
}

} // namespace

std::string blockFolder(std::string_view name) {
    std::string folder = "sys/block/";
    for (char c : name) folder += c == '/' ? '!' : c;
    return folder;
}

bool isPhysicalDrive(const SystemRoot& root, std::string_view name) {
    if (isVirtualName(name) || isNvmePath(name) || isEmmcPartition(name)) return false;
    const std::string folder = root.path(blockFolder(name));
    if (const auto place = readLink(folder)) return place->find("/virtual/block/") == std::string::npos;
    if (exists(folder)) return true;
    if (exists(root.path("sys/class/block/" + std::string(name) + "/partition"))) return false;
    return !isPartitionName(name);
}

std::vector<std::string> physicalDrives(const SystemRoot& root) {
    std::vector<std::string> names = listFolder(root.path("sys/block"));
    for (auto& name : names) std::replace(name.begin(), name.end(), '!', '/');
    const auto table = readTable(root.path("proc/diskstats"));
    std::string_view rest = table ? std::string_view(*table) : std::string_view();
    while (const auto line = takeDiskLine(rest)) names.emplace_back(line->name);

    // Shorter names first puts sdb before sdaa and nvme2n1 before nvme10n1.
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::erase_if(names, [&](const std::string& name) { return !isPhysicalDrive(root, name); });
    return names;
}

std::optional<uint64_t> driveSize(const SystemRoot& root, std::string_view name) {
    constexpr uint64_t sectorBytes = 512;
    const auto sectors = readNumber(root.path(blockFolder(name) + "/size"));
    if (!sectors || *sectors < 0) return {};
    return static_cast<uint64_t>(*sectors) * sectorBytes;
}

} // namespace sysinfo::platform
