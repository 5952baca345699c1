#pragma once

#include "core/platform.h"
#include "core/sc.h"

#include <string>
#include <vector>

namespace sysinfo {

/// A mounted volume that a user would browse.
struct VolumeInfo {
    std::string mount;
    std::string device;
    std::string fs;
    uint64_t total = 0;     ///< 0 while unknown: a server that has not answered yet, a captured root
    uint64_t freeBytes = 0; ///< available to ordinary users
    uint64_t used = 0;      ///< total − freeBytes
    bool local = true;
};

/// The mounted volumes, without pseudo and empty file systems. Never waits for a remote server.
std::vector<VolumeInfo> readVolumes(const SystemRoot& root);

/// The physical disks with their counters, at most `max` of them, as flat records; how many were written.
/// Stateless.
int diskDevices(const SystemRoot& root, SCDiskDevice* out, int max);

/// The disk listing for callers that ask on every tick: counters are read every time, what the hardware says
/// of the disks only when other drives are there, or after 30 seconds, because a card may have been changed.
class DiskDeviceList {
public:
    explicit DiskDeviceList(SystemRoot root) : root_(std::move(root)) {}

    /// Valid until the next call.
    const std::vector<SCDiskDevice>& sample(platform::Readers& readers);

private:
    bool describes(const std::vector<platform::DriveCounters>& counters) const;

    SystemRoot root_;
    std::vector<platform::DriveCounters> counters_;
    std::vector<std::string> drives_; ///< names in `counters_` when the disks were described
    uint64_t describedAtNs_ = 0;
    std::vector<SCDiskDevice> devices_;
};

/// The record of one disk, without counters; texts are cut to their arrays.
SCDiskDevice diskDevice(const platform::DriveDescription& drive);

} // namespace sysinfo
