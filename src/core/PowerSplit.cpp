#include "core/PowerSplit.h"

#include <algorithm>
#include <array>

namespace sysinfo {

namespace {

struct Domain {
    std::string_view channel;
    double SCPower::*field;
    bool marksSplit; ///< its channel shows that this machine has a split
};

constexpr std::array domains{
    Domain{"CPU Energy", &SCPower::cpuWatts, true},   Domain{"GPU", &SCPower::gpuWatts, true},
    Domain{"ANE", &SCPower::aneWatts, true},          Domain{"DRAM", &SCPower::dramWatts, true},
    Domain{"AVE", &SCPower::encoderWatts, true},      Domain{"VDEC", &SCPower::decoderWatts, true},
    Domain{"ISP", &SCPower::ispWatts, false},         Domain{"DISP", &SCPower::displayWatts, false},
    Domain{"DISPEXT", &SCPower::displayWatts, false},
};

double joulesPer(std::string_view unit) {
    if (unit == "mJ") return 1e-3;
    if (unit == "uJ" || unit == "µJ") return 1e-6;
    if (unit == "nJ") return 1e-9;
    return 1;
}

} // namespace

EnergySample energyBetween(const EnergySample& previous, const EnergySample& current) {
    EnergySample gained;
    for (const EnergyChannel& now : current) {
        const auto before = std::find_if(previous.begin(), previous.end(),
                                         [&](const EnergyChannel& channel) { return channel.id == now.id; });
        if (before == previous.end() || now.energy < before->energy) continue;
        gained.push_back(now);
        gained.back().energy -= before->energy;
    }
    return gained;
}

double channelWatts(const EnergyChannel& gained, double seconds) {
    return joulesPer(gained.unit) * static_cast<double>(gained.energy) / seconds;
}

SCPower splitPower(std::span<const EnergyChannel> gained, double seconds) {
    SCPower power{};
    for (const EnergyChannel& channel : gained)
        for (const Domain& domain : domains) {
            if (domain.channel != channel.name) continue;
            power.*domain.field += channelWatts(channel, seconds);
            power.available = power.available || domain.marksSplit;
        }
    if (power.cpuWatts + power.gpuWatts + power.aneWatts + power.dramWatts <= 0) power.available = false;
    return power;
}

} // namespace sysinfo
