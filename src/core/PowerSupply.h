#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sysinfo {

/// One source of power as the firmware describes it: a battery, or what brings power from outside. Electrical
/// figures are in millionths (µV, µA, µW, µAh, µWh), as reported; what was not told is absent.
struct PowerSupply {
    enum class Kind { external, battery, other };
    enum class Status { unknown, charging, discharging, notCharging, full };
    /// The charge in words, of batteries that measure no better.
    enum class Level { unknown, critical, low, normal, high, full };

    std::string name; ///< of the device, "BAT0"
    std::string model;
    Kind kind = Kind::other;
    bool peripheral = false; ///< belongs to a mouse, a headset, …: not a source of this machine
    bool present = true;
    std::optional<bool> online; ///< of an external source: it delivers
    Status status = Status::unknown;
    std::optional<int> capacityPercent;
    Level capacityLevel = Level::unknown;
    std::optional<int64_t> chargeNow, chargeFull, chargeFullDesign; ///< µAh
    std::optional<int64_t> energyNow, energyFull, energyFullDesign; ///< µWh
    std::optional<int64_t> voltageNow, voltageMinDesign;            ///< µV
    std::optional<int64_t> currentNow;                              ///< µA; the sign means nothing reliable
    std::optional<int64_t> powerNow;                                ///< µW; the sign means nothing reliable
    std::optional<int> cycleCount;
    std::optional<int> temperatureTenths; ///< tenths of a degree Celsius
    std::optional<int64_t> timeToEmptySeconds, timeToFullSeconds;
    std::string health; ///< "Good", "Overheat", "Dead", …; empty when unknown
};

namespace platform {
/// Every power supply, in order of name. Can take long: some embedded controllers answer in tenths of a
/// second. Stateless; any thread.
std::vector<PowerSupply> readPowerSupplies(const SystemRoot& root);
} // namespace platform

} // namespace sysinfo
