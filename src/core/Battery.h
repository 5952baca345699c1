#pragma once

#include "core/PowerSupply.h"
#include "core/sc.h"

#include <span>

namespace sysinfo {

/// The machine's battery; several batteries show as one. −1 marks an unknown time, count or capacity.
struct BatteryInfo {
    bool present = false;
    int32_t percent = 0;
    bool charging = false;
    bool onAC = false;
    int32_t timeToEmptyMin = -1; ///< known only while discharging
    int32_t timeToFullMin = -1;  ///< known only while charging
    int32_t cycleCount = -1;     ///< of the battery with the most
    int32_t designCapacity = -1; ///< mAh
    int32_t nominalCapacity = -1;
    int32_t voltage_mV = 0;    ///< the mean of several
    int32_t amperage_mA = 0;   ///< negative while discharging
    double temperatureC = 0.0; ///< of the warmest; 0 when none is measured
    std::string health;        ///< what the firmware says, the worst of several

    // Beyond the flat record.
    bool percentKnown = false;   ///< otherwise `percent` is 0 because nothing tells the charge
    std::optional<double> watts; ///< drawn from (negative) or put into the battery
    uint32_t count = 0;
    std::string model; ///< joined with ", "
};

/// Reads the battery's state now. Stateless; any thread. Can take long (see readPowerSupplies).
BatteryInfo readBattery(const SystemRoot& root);

/// The arithmetic of `readBattery`.
///
/// - Peripherals and empty bays are not counted. Several batteries add up by their energy.
/// - The charge is what is left of what fits in; where the battery does not tell the latter, its own
///   percentage, then what is left of the design capacity, then its level in words (full 100, high 80,
///   normal 55, low 15, critical 5).
/// - Capacities in µWh become mAh at the design voltage (the present one where that is unknown).
/// - The machine is on external power when a source delivers or a battery charges; where no source shows
///   itself at all, also when a battery is full or holds its charge.
/// - Currents and powers are reported with either sign or none: the status decides the sign.
BatteryInfo deriveBattery(std::span<const PowerSupply> supplies);

SCBattery flatBattery(const BatteryInfo& battery);

} // namespace sysinfo
