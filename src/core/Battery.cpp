#include "core/Battery.h"

#include "core/FlatRecords.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sysinfo {

namespace {

using Status = PowerSupply::Status;
using OptionalDouble = std::optional<double>;

constexpr double longestCredibleMinutes = 10.0 * 24 * 60;

int32_t rounded(double value) {
    constexpr double largest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::round(value), -largest, largest));
}

OptionalDouble real(const std::optional<int64_t>& value) {
    return value ? OptionalDouble(static_cast<double>(*value)) : std::nullopt;
}

/// Volts that turn a charge into an energy: those the capacity was specified at.
OptionalDouble designVolts(const PowerSupply& b) {
    const auto microvolts = b.voltageMinDesign ? b.voltageMinDesign : b.voltageNow;
    return microvolts ? OptionalDouble(static_cast<double>(*microvolts) / 1e6) : std::nullopt;
}

OptionalDouble presentVolts(const PowerSupply& b) {
    return b.voltageNow ? OptionalDouble(static_cast<double>(*b.voltageNow) / 1e6) : designVolts(b);
}

bool measuresCharge(const PowerSupply& b) { return !b.energyNow && b.chargeNow; }

/// A figure of one battery as energy. A battery of unknown voltage counts at 1 V, which cancels out in
/// ratios and times.
OptionalDouble energy(const PowerSupply& b, const std::optional<int64_t>& microwattHours,
                      const std::optional<int64_t>& microampHours) {
    if (microwattHours && !measuresCharge(b)) return real(microwattHours);
    if (!microampHours) return {};
    return static_cast<double>(*microampHours) * designVolts(b).value_or(1);
}

OptionalDouble energyNow(const PowerSupply& b) { return energy(b, b.energyNow, b.chargeNow); }
OptionalDouble energyFull(const PowerSupply& b) { return energy(b, b.energyFull, b.chargeFull); }
OptionalDouble energyDesign(const PowerSupply& b) {
    return energy(b, b.energyFullDesign, b.chargeFullDesign);
}

/// How fast the energy of `energyNow` changes, at least 0.
double energyRate(const PowerSupply& b) {
    const double power = std::abs(real(b.powerNow).value_or(0));
    const double current = std::abs(real(b.currentNow).value_or(0));
    const double fromCurrent = current * (measuresCharge(b) ? designVolts(b) : presentVolts(b)).value_or(1);
    if (measuresCharge(b)) return current > 0 ? fromCurrent : power;
    return power > 0 ? power : fromCurrent;
}

OptionalDouble milliampHours(const PowerSupply& b, const std::optional<int64_t>& microampHours,
                             const std::optional<int64_t>& microwattHours) {
    if (microampHours) return static_cast<double>(*microampHours) / 1000;
    const auto volts = designVolts(b);
    if (!microwattHours || !volts) return {};
    return static_cast<double>(*microwattHours) / *volts / 1000;
}

OptionalDouble levelPercent(PowerSupply::Level level) {
    switch (level) {
    case PowerSupply::Level::unknown: return {};
    case PowerSupply::Level::critical: return 5;
    case PowerSupply::Level::low: return 15;
    case PowerSupply::Level::normal: return 55;
    case PowerSupply::Level::high: return 80;
    case PowerSupply::Level::full: break;
    }
    return 100;
}

OptionalDouble ownPercent(const PowerSupply& b) {
    const auto now = energyNow(b);
    if (const auto full = energyFull(b); now && full) return *now * 100 / *full;
    if (b.capacityPercent) return *b.capacityPercent;
    if (const auto design = energyDesign(b); now && design) return *now * 100 / *design;
    return levelPercent(b.capacityLevel);
}

using Batteries = std::vector<const PowerSupply*>;

bool any(const Batteries& batteries, Status status) {
    return std::any_of(batteries.begin(), batteries.end(),
                       [&](const PowerSupply* b) { return b->status == status; });
}

/// The sum over all batteries; absent when one does not tell, for a part is not the whole.
template <class Figure>
OptionalDouble sum(const Batteries& batteries, Figure figure) {
    double total = 0;
    for (const PowerSupply* b : batteries) {
        const OptionalDouble value = figure(*b);
        if (!value) return {};
        total += *value;
    }
    return total;
}

OptionalDouble percent(const Batteries& batteries) {
    const auto now = sum(batteries, energyNow);
    const auto full = sum(batteries, energyFull);
    if (now && full) return *now * 100 / *full;
    const auto own = sum(batteries, ownPercent);
    return own ? OptionalDouble(*own / static_cast<double>(batteries.size())) : std::nullopt;
}

bool onExternalPower(std::span<const PowerSupply> supplies, const Batteries& batteries) {
    bool sourcesShow = false;
    for (const PowerSupply& supply : supplies) {
        if (supply.kind != PowerSupply::Kind::external || supply.peripheral || !supply.online) continue;
        if (*supply.online) return true;
        sourcesShow = true;
    }
    if (any(batteries, Status::charging)) return true;
    if (sourcesShow || any(batteries, Status::discharging)) return false;
    return any(batteries, Status::full) || any(batteries, Status::notCharging);
}

double sign(const PowerSupply& b, bool onAC) {
    if (b.status == Status::charging) return 1;
    if (b.status == Status::discharging || (b.status == Status::unknown && !onAC)) return -1;
    return b.currentNow.value_or(0) < 0 || b.powerNow.value_or(0) < 0 ? -1 : 1;
}

void deriveFlow(const Batteries& batteries, BatteryInfo& info) {
    double milliamps = 0;
    double watts = 0;
    bool wattsKnown = false;
    for (const PowerSupply* b : batteries) {
        const double direction = sign(*b, info.onAC);
        const double current = std::abs(real(b->currentNow).value_or(0)) / 1e6;
        const double power = std::abs(real(b->powerNow).value_or(0)) / 1e6;
        const auto volts = presentVolts(*b);
        if (current > 0)
            milliamps += direction * current * 1000;
        else if (volts)
            milliamps += direction * power / *volts * 1000;
        if (power > 0 || (b->currentNow && volts)) {
            watts += direction * (power > 0 ? power : current * *volts);
            wattsKnown = true;
        }
    }
    info.amperage_mA = rounded(milliamps);
    if (wattsKnown) info.watts = watts;
}

int32_t minutes(double hours) {
    const double value = std::floor(hours * 60);
    return value >= 0 && value <= longestCredibleMinutes ? static_cast<int32_t>(value) : -1;
}

void deriveTimes(const Batteries& batteries, BatteryInfo& info) {
    const bool discharging = !info.charging && any(batteries, Status::discharging);
    if (!info.charging && !discharging) return;
    int32_t& time = info.charging ? info.timeToFullMin : info.timeToEmptyMin;

    const PowerSupply& first = *batteries.front();
    const auto firmware = info.charging ? first.timeToFullSeconds : first.timeToEmptySeconds;
    // The firmware knows one battery: with several, its time is not the machine's.
    if (batteries.size() == 1 && firmware) {
        time = minutes(static_cast<double>(*firmware) / 3600);
        return;
    }
    double rate = 0;
    for (const PowerSupply* b : batteries)
        if (b->status == (info.charging ? Status::charging : Status::discharging)) rate += energyRate(*b);
    const auto left = info.charging ? sum(batteries,
                                          [](const PowerSupply& b) -> OptionalDouble {
                                              const auto now = energyNow(b);
                                              const auto full = energyFull(b);
                                              if (!now || !full) return {};
                                              return std::max(*full - *now, 0.0);
                                          })
                                    : sum(batteries, energyNow);
    if (left && rate > 0) time = minutes(*left / rate);
}

void deriveCondition(const Batteries& batteries, BatteryInfo& info) {
    double volts = 0;
    int voltages = 0;
    for (const PowerSupply* b : batteries) {
        if (b->voltageNow) {
            volts += static_cast<double>(*b->voltageNow) / 1000;
            ++voltages;
        }
        info.cycleCount = std::max(info.cycleCount, b->cycleCount.value_or(-1));
        if (b->temperatureTenths.value_or(0) >= 1)
            info.temperatureC = std::max(info.temperatureC, *b->temperatureTenths / 10.0);
        if (!b->health.empty() && (info.health.empty() || info.health == "Good")) info.health = b->health;
        if (!b->model.empty()) info.model += (info.model.empty() ? "" : ", ") + b->model;
    }
    if (voltages > 0) info.voltage_mV = rounded(volts / voltages);
    const auto design = sum(batteries, [](const PowerSupply& b) {
        return milliampHours(b, b.chargeFullDesign, b.energyFullDesign);
    });
    const auto nominal =
        sum(batteries, [](const PowerSupply& b) { return milliampHours(b, b.chargeFull, b.energyFull); });
    if (design) info.designCapacity = rounded(*design);
    if (nominal) info.nominalCapacity = rounded(*nominal);
}

} // namespace

BatteryInfo deriveBattery(std::span<const PowerSupply> supplies) {
    BatteryInfo info;
    Batteries batteries;
    for (const PowerSupply& supply : supplies)
        if (supply.kind == PowerSupply::Kind::battery && !supply.peripheral && supply.present)
            batteries.push_back(&supply);
    if (batteries.empty()) return info;

    info.present = true;
    info.count = static_cast<uint32_t>(batteries.size());
    if (const auto charge = percent(batteries)) {
        info.percentKnown = true;
        info.percent = static_cast<int32_t>(std::clamp(*charge, 0.0, 100.0));
    }
    info.charging = any(batteries, Status::charging);
    info.onAC = onExternalPower(supplies, batteries);
    deriveFlow(batteries, info);
    deriveTimes(batteries, info);
    deriveCondition(batteries, info);
    return info;
}

BatteryInfo readBattery(const SystemRoot& root) { return deriveBattery(platform::readPowerSupplies(root)); }

SCBattery flatBattery(const BatteryInfo& battery) {
    SCBattery flat{};
    flat.present = battery.present;
    flat.percent = battery.percent;
    flat.charging = battery.charging;
    flat.onAC = battery.onAC;
    flat.timeToEmptyMin = battery.timeToEmptyMin;
    flat.timeToFullMin = battery.timeToFullMin;
    flat.cycleCount = battery.cycleCount;
    flat.designCapacity = battery.designCapacity;
    flat.nominalCapacity = battery.nominalCapacity;
    flat.voltage_mV = battery.voltage_mV;
    flat.amperage_mA = battery.amperage_mA;
    flat.temperatureC = battery.temperatureC;
    scutil::copyText(flat.health, battery.health);
    return flat;
}

} // namespace sysinfo
