#include "monitor/HardwareConversion.h"

#include <algorithm>
#include <array>
#include <span>

namespace quarn {

namespace {

using Identifiers = std::span<const std::string_view>;

// Identifiers since the names left them, by family.
constexpr std::array<std::string_view, 6> airs{"Mac14,2",  "Mac14,15", "Mac15,12",
                                               "Mac15,13", "Mac16,12", "Mac16,13"};
constexpr std::array<std::string_view, 18> pros{
    "Mac14,5", "Mac14,6",  "Mac14,7",  "Mac14,9", "Mac14,10", "Mac15,3", "Mac15,6", "Mac15,7", "Mac15,8",
    "Mac15,9", "Mac15,10", "Mac15,11", "Mac16,1", "Mac16,5",  "Mac16,6", "Mac16,7", "Mac16,8", "Mac17,2"};
constexpr std::array<std::string_view, 4> minis{"Mac14,3", "Mac14,12", "Mac16,10", "Mac16,11"};
constexpr std::array<std::string_view, 4> iMacs{"Mac15,4", "Mac15,5", "Mac16,2", "Mac16,3"};
constexpr std::array<std::string_view, 6> studios{"Mac13,1",  "Mac13,2",  "Mac14,13",
                                                  "Mac14,14", "Mac15,14", "Mac16,9"};
constexpr std::array<std::string_view, 1> towers{"Mac14,8"};

struct Family {
    std::string_view prefix;
    Identifiers identifiers;
    std::string_view name;
};

/// In the order of their test.
constexpr std::array families{
    Family{"MacBookAir", airs, "MacBook Air"},  Family{"MacBookPro", pros, "MacBook Pro"},
    Family{"Macmini", minis, "Mac mini"},       Family{"iMac", iMacs, "iMac"},
    Family{"MacStudio", studios, "Mac Studio"}, Family{"MacPro", towers, "Mac Pro"},
};

} // namespace

std::string modelFamily(std::string_view model) {
    for (const Family& family : families) {
        const auto& ids = family.identifiers;
        if (model.starts_with(family.prefix) || std::find(ids.begin(), ids.end(), model) != ids.end())
            return std::string(family.name);
    }
    return model.empty() || model.starts_with("Mac") ? "Mac" : std::string(model);
}

Hardware toHardware(const sysinfo::HardwareInfo& info, const sysinfo::BatteryInfo& battery,
                    const std::optional<sysinfo::NeuralEngine>& engine) {
    Hardware hardware;
    hardware.model = info.model;
    hardware.cpuBrand = info.cpuBrand;
    hardware.arch = info.arch;
    hardware.osVersion = info.osVersion;
    hardware.osBuild = info.osBuild;
    hardware.kernel = info.kernel;
    hardware.hostname = info.hostname;
    hardware.gpuName = info.gpuName;
    hardware.ncpu = info.ncpu;
    hardware.physCpu = info.physCpu;
    hardware.perfCores = info.perfCores;
    hardware.effCores = info.effCores;
    hardware.gpuCores = info.gpuCores;
    hardware.memTotal = info.memTotal;
    hardware.l2Cache = info.l2Cache;
    hardware.l2CacheE = info.l2CacheE;
    hardware.l1iCache = info.l1iCache;
    hardware.l1dCache = info.l1dCache;
    hardware.pageSize = info.pageSize;
    hardware.hvSupport = info.hvSupport;
    hardware.vmPresent = info.vmPresent;
    if (info.bootTime > 0) hardware.bootTime = info.bootTime;
    if (engine) {
        hardware.aneCores = engine->cores;
        hardware.aneArch = engine->arch;
    }
    hardware.hasBattery = battery.present;
    hardware.isAppleSilicon = info.isAppleSilicon;
    hardware.l3Cache = info.l3Cache;
    hardware.baseClockHz = info.baseClockHz;
    return hardware;
}

std::optional<Battery> toBattery(const sysinfo::BatteryInfo& info) {
    if (!info.present) return {};
    Battery battery;
    battery.present = true;
    battery.charging = info.charging;
    battery.onAC = info.onAC;
    battery.percent = info.percentKnown ? info.percent : -1;
    battery.timeToEmptyMin = info.timeToEmptyMin;
    battery.timeToFullMin = info.timeToFullMin;
    battery.cycleCount = info.cycleCount;
    battery.designCapacity = info.designCapacity;
    battery.nominalCapacity = info.nominalCapacity;
    battery.voltage_mV = info.voltage_mV;
    battery.amperage_mA = info.amperage_mA;
    battery.temperatureC = info.temperatureC;
    battery.health = info.health;
    return battery;
}

} // namespace quarn
