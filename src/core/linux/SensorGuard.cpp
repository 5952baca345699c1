#include "core/linux/SensorGuard.h"

#include "core/linux/Files.h"

#include <array>

namespace sysinfo::platform {

namespace {

// The nearest device that takes part in runtime power management: a controller's own entry says
// "unsupported" while the card that carries it may sleep.
std::string powerStatusOf(std::string device) {
    for (int level = 0; level < 4 && device.find("/devices/") != std::string::npos; ++level) {
        const std::string path = device + "/power/runtime_status";
        const auto status = readAttribute(path);
        if (status && *status != "unsupported") return path;
        device.erase(device.rfind('/'));
    }
    return {};
}

std::string transfersOfRotatingDisk(const std::string& device) {
    for (const std::string& disk : listFolder(device + "/block")) {
        const std::string folder = device + "/block/" + disk;
        if (readNumber(folder + "/queue/rotational") == 1) return folder + "/stat";
    }
    return {};
}

} // namespace

SensorGuard::SensorGuard(const std::string& device) {
    if (device.empty()) return;
    runtimeStatus_.path = powerStatusOf(device);
    transfers_.path = transfersOfRotatingDisk(device);
}

SensorState SensorGuard::admission(const SensorIo& io) {
    std::array<char, 512> buffer;
    if (const auto status = readText(io, runtimeStatus_, buffer); status && *status != "active") {
        return SensorState::asleep;
    }
    if (!isRotatingDisk()) return SensorState::answering;
    const auto transfers = readText(io, transfers_, buffer);
    if (!transfers) return SensorState::idle;
    const bool isFirstLook = lastTransfers_.empty();
    if (*transfers == lastTransfers_) return SensorState::idle;
    lastTransfers_ = *transfers;
    return isFirstLook ? SensorState::idle : SensorState::answering;
}

void SensorGuard::readingEnded(const SensorIo& io) {
    std::array<char, 512> buffer;
    if (const auto transfers = readText(io, transfers_, buffer)) lastTransfers_ = *transfers;
}

} // namespace sysinfo::platform
