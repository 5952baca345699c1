#pragma once

#include "core/SystemRoot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Which block devices are whole physical drives. Everything here is read from sysfs and names; no device is
/// opened, so none wakes.
namespace sysinfo::platform {

/// The folder of a block device under sys/block; slashes in device names are written "!" there.
std::string blockFolder(std::string_view name);

/// Whether `name` ("sda", "nvme0n1") is a whole physical drive: no partition, no device made of others or of
/// memory, no optical or floppy drive, no second path to a drive that is listed under its own name. Where a
/// captured machine lacks sys/block, the name decides.
bool isPhysicalDrive(const SystemRoot& root, std::string_view name);

/// The physical drives by sys/block and proc/diskstats, in the order of their names.
std::vector<std::string> physicalDrives(const SystemRoot& root);

/// The size in bytes; nullopt when unknown, 0 for a drive without a medium.
std::optional<uint64_t> driveSize(const SystemRoot& root, std::string_view name);

/// Remembers which names of a list are drives, so that a tick costs no look into sysfs while the list stays
/// the same.
class DriveNames {
public:
    /// Whether the name at `position` of the current list is a drive; nullopt when another name, or none,
    /// stood there the last time.
    std::optional<bool> known(size_t position, std::string_view name) const {
        if (position >= names_.size() || names_[position].name != name) return {};
        return names_[position].isDrive;
    }
    size_t size() const { return names_.size(); }
    void forget() { names_.clear(); }
    void learn(const SystemRoot& root, std::string_view name) {
        names_.push_back({std::string(name), isPhysicalDrive(root, name)});
    }

private:
    struct Name {
        std::string name;
        bool isDrive;
    };
    std::vector<Name> names_;
};

} // namespace sysinfo::platform
