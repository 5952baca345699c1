#include "core/Storage.h"

#include "core/FlatRecords.h"

#include <algorithm>

namespace sysinfo {

namespace {

constexpr uint64_t descriptionLifetimeNs = 30'000'000'000;

std::string diskName(const std::string& vendor, const std::string& product) {
    if (product.empty()) return vendor;
    const bool contained = product.find(vendor) != std::string::npos;
    return contained ? product : vendor + ' ' + product;
}

std::vector<SCDiskDevice> describedDisks(const SystemRoot& root) {
    std::vector<SCDiskDevice> devices;
    for (const auto& drive : platform::describeDrives(root)) devices.push_back(diskDevice(drive));
    return devices;
}

void setCounters(std::vector<SCDiskDevice>& devices, const std::vector<platform::DriveCounters>& drives) {
    for (auto& device : devices) {
        const auto found =
            std::find_if(drives.begin(), drives.end(), [&](const platform::DriveCounters& drive) {
                return drive.stats.ok && drive.name == device.bsd;
            });
        device.readBytes = found == drives.end() ? 0 : found->stats.bytesRead;
        device.writeBytes = found == drives.end() ? 0 : found->stats.bytesWritten;
    }
}

} // namespace

SCDiskDevice diskDevice(const platform::DriveDescription& drive) {
    SCDiskDevice device{};
    scutil::copyText(device.bsd, drive.name);
    scutil::copyText(device.name, diskName(drive.vendor, drive.product));
    scutil::copyText(device.interconnect, drive.interconnect);
    scutil::copyText(device.medium, drive.medium);
    scutil::copyText(device.architecture, drive.architecture);
    scutil::copyText(device.link, drive.link);
    device.size = drive.size;
    device.internalDisk = drive.internal ? 1 : 0;
    device.removable = drive.removable ? 1 : 0;
    return device;
}

int diskDevices(const SystemRoot& root, SCDiskDevice* out, int max) {
    if (!out || max < 1) return 0;
    auto devices = describedDisks(root);
    std::vector<platform::DriveCounters> counters;
    if (!platform::readDriveCounters(*platform::openReaders(root), counters)) counters.clear();
    setCounters(devices, counters);
    const size_t count = std::min(devices.size(), static_cast<size_t>(max));
    std::copy_n(devices.begin(), count, out);
    return static_cast<int>(count);
}

bool DiskDeviceList::describes(const std::vector<platform::DriveCounters>& counters) const {
    return std::equal(drives_.begin(), drives_.end(), counters.begin(), counters.end(),
                      [](const std::string& name, const auto& drive) { return name == drive.name; });
}

const std::vector<SCDiskDevice>& DiskDeviceList::sample(platform::Readers& readers) {
    if (!platform::readDriveCounters(readers, counters_)) counters_.clear();
    const uint64_t nowNs = platform::monotonicRawNs();
    const bool fresh = describedAtNs_ != 0 && nowNs - describedAtNs_ <= descriptionLifetimeNs;
    if (!fresh || !describes(counters_)) {
        devices_ = describedDisks(root_);
        describedAtNs_ = nowNs;
        drives_.clear();
        for (const auto& drive : counters_) drives_.push_back(drive.name);
    }
    setCounters(devices_, counters_);
    return devices_;
}

std::vector<VolumeInfo> readVolumes(const SystemRoot& root) {
    std::vector<VolumeInfo> volumes;
    for (auto& mounted : platform::readMountedVolumes(root)) {
        VolumeInfo& volume = volumes.emplace_back();
        volume.mount = std::move(mounted.mount);
        volume.device = std::move(mounted.device);
        volume.fs = std::move(mounted.fs);
        volume.total = mounted.total;
        volume.freeBytes = mounted.available;
        volume.used = mounted.total > mounted.available ? mounted.total - mounted.available : 0;
        volume.local = mounted.local;
    }
    return volumes;
}

} // namespace sysinfo
