#include "core/linux/SensorGuard.h"

#include "core/linux/Files.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

constexpr uint64_t second = 1'000'000'000;
constexpr uint64_t readingsNs = 30 * second;
constexpr uint64_t restingDiskNs = 60 * second;

// The nearest device that takes part in runtime power management: a controller's own entry says
// "unsupported" while the card that carries it may sleep.
std::string powerFolderOf(std::string device) {
    for (int level = 0; level < 4 && device.find("/devices/") != std::string::npos; ++level) {
        std::string folder = device + "/power";
        const auto status = readAttribute(folder + "/runtime_status");
        if (status && *status != "unsupported") return folder;
        device.erase(device.rfind('/'));
    }
    return {};
}

// The block device behind a disk's sensor: "block/sda" of a SCSI device, "nvme0n1" of an NVMe controller.
std::string blockDeviceOf(const std::string& device) {
    for (const std::string& folder : {device + "/block", device}) {
        for (const std::string& name : listFolder(folder)) {
            std::string disk = folder + '/' + name;
            if (exists(disk + "/stat") && exists(disk + "/queue")) return disk;
        }
    }
    return {};
}

} // namespace

SensorGuard::SensorGuard(const std::string& device) {
    if (device.empty()) return;
    if (const std::string power = powerFolderOf(device); !power.empty()) {
        runtimeStatus_.path = power + "/runtime_status";
        control_.path = power + "/control";
        const long long delay = readNumber(power + "/autosuspend_delay_ms").value_or(0);
        if (delay > 0) pauseNs_ = static_cast<uint64_t>(delay) * 1'000'000 + second;
    }
    if (const std::string disk = blockDeviceOf(device); !disk.empty()) {
        transfers_.path = disk + "/stat";
        isRotating_ = readNumber(disk + "/queue/rotational") == 1;
    }
}

SensorState SensorGuard::admission(const SensorIo& io) {
    std::array<char, 64> buffer;
    if (const auto status = readText(io, runtimeStatus_, buffer); status && *status != "active") {
        inReadings_ = false;
        return SensorState::asleep;
    }
    return isPausing(io) || isDiskAtRest(io) ? SensorState::idle : SensorState::answering;
}

bool SensorGuard::isPausing(const SensorIo& io) {
    if (pauseNs_ == 0) return false;
    const uint64_t now = io.nowNs();
    if (now < turnNs_) return !inReadings_;
    std::array<char, 16> buffer;
    const bool maySuspend = readText(io, control_, buffer) == "auto";
    inReadings_ = !inReadings_ || !maySuspend;
    turnNs_ = now + (inReadings_ ? readingsNs : pauseNs_);
    return !inReadings_;
}

bool SensorGuard::isDiskAtRest(const SensorIo& io) {
    if (transfers_.path.empty()) return false;
    std::array<char, 512> buffer;
    const auto transfers = readText(io, transfers_, buffer);
    const bool isFirstLook = lastTransfers_.empty();
    const bool hasWorked = transfers && *transfers != lastTransfers_;
    if (hasWorked) lastTransfers_ = *transfers;
    if (isRotating_) return !hasWorked || isFirstLook;
    return !hasWorked && lastReadNs_ != 0 && io.nowNs() < lastReadNs_ + restingDiskNs;
}

void SensorGuard::readingEnded(const SensorIo& io) {
    std::array<char, 512> buffer;
    if (const auto transfers = readText(io, transfers_, buffer)) lastTransfers_ = *transfers;
    lastReadNs_ = io.nowNs();
}

uint64_t SensorGuard::keptNs() const {
    if (!transfers_.path.empty()) return 300 * second; // a disk's temperature moves slowly
    return std::max(15 * second, pauseNs_ + 5 * second);
}

} // namespace sysinfo::platform
