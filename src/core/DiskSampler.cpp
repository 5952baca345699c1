#include "core/DiskSampler.h"

#include <algorithm>

namespace sysinfo {

namespace {

constexpr uint64_t capacityLifetimeNs = 30'000'000'000;

double rate(uint64_t current, uint64_t previous, double seconds) {
    return current >= previous ? static_cast<double>(current - previous) / seconds : 0;
}

uint64_t increase(uint64_t current, uint64_t previous) { return current > previous ? current - previous : 0; }

SCDisk sums(const std::vector<platform::DriveCounters>& drives) {
    SCDisk disk{};
    for (const auto& [name, stats] : drives) {
        if (!stats.ok) continue;
        disk.readBytes += stats.bytesRead;
        disk.writeBytes += stats.bytesWritten;
        disk.readOps += stats.opsRead;
        disk.writeOps += stats.opsWritten;
        disk.readTimeNs += stats.timeReadNs;
        disk.writeTimeNs += stats.timeWriteNs;
    }
    return disk;
}

} // namespace

SCDisk DiskSampler::advance(const std::vector<platform::DriveCounters>& drives, uint64_t nowNs) {
    SCDisk disk = sums(drives);
    if (lastNs_ && nowNs > *lastNs_) {
        const auto elapsedNs = static_cast<double>(nowNs - *lastNs_);
        const double seconds = elapsedNs / 1e9;
        disk.readRate = rate(disk.readBytes, last_.readBytes, seconds);
        disk.writeRate = rate(disk.writeBytes, last_.writeBytes, seconds);
        disk.readOpsRate = rate(disk.readOps, last_.readOps, seconds);
        disk.writeOpsRate = rate(disk.writeOps, last_.writeOps, seconds);

        const auto busyNs = static_cast<double>(
            increase(disk.readTimeNs + disk.writeTimeNs, last_.readTimeNs + last_.writeTimeNs));
        const uint64_t operations = increase(disk.readOps + disk.writeOps, last_.readOps + last_.writeOps);
        const auto driveCount = static_cast<double>(std::max<size_t>(drives.size(), 1));
        disk.activeFraction = std::min(busyNs / (elapsedNs * driveCount), 1.0);
        if (operations > 0) disk.avgResponseMs = busyNs / static_cast<double>(operations) / 1e6;
    }
    lastNs_ = nowNs;
    last_ = disk;
    return disk;
}

SCDisk DiskSampler::sample(platform::Readers& readers) {
    if (!platform::readDriveCounters(readers, drives_)) {
        // Without a baseline: the counters of the next reading are no traffic of the interval.
        lastNs_.reset();
        return {};
    }
    const uint64_t nowNs = platform::monotonicRawNs();
    SCDisk disk = advance(drives_, nowNs);
    if (!capacityAtNs_ || nowNs - *capacityAtNs_ > capacityLifetimeNs) {
        capacity_ = platform::readDriveCapacity(root_);
        capacityAtNs_ = nowNs;
    }
    disk.capacityBytes = capacity_.bytes;
    disk.diskCount = capacity_.disks;
    return disk;
}

} // namespace sysinfo
