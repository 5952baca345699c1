#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The table of mounts in proc/self/mountinfo and the choice of those that a person would call volumes.
/// Pure functions.
namespace sysinfo::platform {

/// One line of the table, escapes undone.
struct Mount {
    uint32_t id = 0;
    uint32_t parent = 0;
    std::string device; ///< "8:1"; devices "0:…" are the kernel's own numbers for what has no block device
    std::string root;   ///< the folder of the file system that is mounted here
    std::string point;
    std::string type;   ///< of the file system
    std::string source; ///< "/dev/sda1", "server:/export", "tmpfs"
};

/// The mounts in the order they were made. Lines that are not understood are left out.
std::vector<Mount> parseMountInfo(std::string_view text);

/// The mounts a person would browse, each file system once and in the order of the table: block devices,
/// remote file systems and the root, but no kernel interfaces, memory, application images and layers, no
/// containers' mounts, and nothing that another mount hides.
std::vector<Mount> browsableMounts(const std::vector<Mount>& table);

/// Whether the files are on another machine.
bool isRemote(const Mount& mount);

/// Whether asking `mount` can wait for a server or a user's program: because one serves it, or because the
/// way to it leads through a mount of `table` that one serves.
bool canStall(const Mount& mount, const std::vector<Mount>& table);

} // namespace sysinfo::platform
