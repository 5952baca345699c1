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
    uint64_t total = 0;
    uint64_t freeBytes = 0; ///< available to ordinary users
    uint64_t used = 0;      ///< total − freeBytes
    bool local = true;
};

/// The mounted volumes, without pseudo and empty file systems. Never waits for a remote server.
std::vector<VolumeInfo> readVolumes(const SystemRoot& root);

/// The physical disks with their counters, at most `max` of them, as flat records. Stateless.
int diskDevices(const SystemRoot& root, SCDiskDevice* out, int max);

/// The disk listing for callers that ask on every tick: what the hardware says of a disk is read only when
/// the set of disks changed, the counters every time.
class DiskDeviceList {
public:
    explicit DiskDeviceList(SystemRoot root) : root_(std::move(root)) {}
    const std::vector<SCDiskDevice>& sample(platform::Readers& readers);

private:
    SystemRoot root_;
    std::vector<platform::DriveCounters> counters_;
    std::vector<std::string> known_; ///< block-device names of `devices_`
    std::vector<SCDiskDevice> devices_;
};

} // namespace sysinfo
