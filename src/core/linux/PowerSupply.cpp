#include "core/linux/PowerSupply.h"

#include "core/CleanText.h"
#include "core/Scan.h"
#include "core/linux/Files.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sysinfo::platform {

namespace {

constexpr std::string_view folder = "sys/class/power_supply";

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

template <class Value, size_t count>
Value lookUp(const std::array<std::pair<std::string_view, Value>, count>& table, std::string_view text,
             Value otherwise) {
    for (const auto& [word, value] : table)
        if (sameText(word, text)) return value;
    return otherwise;
}

using Status = PowerSupply::Status;
constexpr std::array<std::pair<std::string_view, Status>, 4> statusWords{{
    {"Charging", Status::charging},
    {"Discharging", Status::discharging},
    {"Not charging", Status::notCharging},
    {"Full", Status::full},
}};

using Level = PowerSupply::Level;
constexpr std::array<std::pair<std::string_view, Level>, 5> levelWords{{
    {"Critical", Level::critical},
    {"Low", Level::low},
    {"Normal", Level::normal},
    {"High", Level::high},
    {"Full", Level::full},
}};

/// What the attribute `type` says. A capture without one tells by what it measures.
PowerSupply::Kind kindOf(std::string_view type, const PowerSupply& supply) {
    if (type == "Battery") return PowerSupply::Kind::battery;
    if (type == "Mains" || type == "Wireless" || type.starts_with("USB")) return PowerSupply::Kind::external;
    if (!type.empty()) return PowerSupply::Kind::other;
    if (supply.status != Status::unknown || supply.capacityPercent || supply.chargeNow || supply.energyNow)
        return PowerSupply::Kind::battery;
    return supply.online ? PowerSupply::Kind::external : PowerSupply::Kind::other;
}

} // namespace

std::string_view ueventValue(std::string_view uevent, std::string_view attribute) {
    constexpr std::string_view prefix = "POWER_SUPPLY_";
    while (!uevent.empty()) {
        std::string_view line = scutil::takeLine(uevent);
        if (!line.starts_with(prefix)) continue;
        line.remove_prefix(prefix.size());
        if (sameText(scutil::takeUntil(line, '='), attribute)) return scutil::trimmed(line);
    }
    return {};
}

PowerSupply describePowerSupply(std::string_view name,
                                const std::function<std::string(std::string_view)>& attribute) {
    const auto number = [&](std::string_view key) { return scutil::toNumber<int64_t>(attribute(key)); };
    const auto smallNumber = [&](std::string_view key) { return scutil::toNumber<int>(attribute(key)); };
    const auto positive = [&](std::string_view key) {
        const auto value = number(key);
        return value && *value > 0 ? value : std::nullopt;
    };
    const auto notNegative = [&](std::string_view key) {
        const auto value = number(key);
        return value && *value >= 0 ? value : std::nullopt;
    };
    const auto nowOrAverage = [&](std::string_view now, std::string_view average) {
        const auto value = number(now);
        return value.value_or(0) != 0 ? value : number(average) ? number(average) : value;
    };

    PowerSupply supply;
    supply.name = name;
    supply.model = scutil::cleanText(attribute("model_name"));
    supply.peripheral = sameText(attribute("scope"), "Device");
    supply.present = number("present").value_or(1) != 0;
    // 2 is a USB supply whose voltage was negotiated.
    if (const auto online = number("online")) supply.online = *online != 0;
    supply.status = lookUp(statusWords, attribute("status"), Status::unknown);
    supply.capacityLevel = lookUp(levelWords, attribute("capacity_level"), Level::unknown);
    if (const auto percent = smallNumber("capacity"); percent && *percent >= 0)
        supply.capacityPercent = std::min(*percent, 100);
    supply.chargeNow = notNegative("charge_now");
    supply.chargeFull = positive("charge_full");
    supply.chargeFullDesign = positive("charge_full_design");
    supply.energyNow = notNegative("energy_now");
    supply.energyFull = positive("energy_full");
    supply.energyFullDesign = positive("energy_full_design");
    supply.voltageNow = positive("voltage_now");
    supply.voltageMinDesign = positive("voltage_min_design");
    supply.currentNow = nowOrAverage("current_now", "current_avg");
    supply.powerNow = nowOrAverage("power_now", "power_avg");
    // By the kernel's definition 0 is "not counted".
    if (const auto cycles = smallNumber("cycle_count"); cycles && *cycles > 0) supply.cycleCount = cycles;
    supply.temperatureTenths = smallNumber("temp");
    supply.timeToEmptySeconds = positive("time_to_empty_now");
    if (!supply.timeToEmptySeconds) supply.timeToEmptySeconds = positive("time_to_empty_avg");
    supply.timeToFullSeconds = positive("time_to_full_now");
    if (!supply.timeToFullSeconds) supply.timeToFullSeconds = positive("time_to_full_avg");
    const std::string health = scutil::cleanText(attribute("health"));
    if (!sameText(health, "Unknown")) supply.health = health;
    supply.kind = kindOf(attribute("type"), supply);
    return supply;
}

std::vector<PowerSupply> readPowerSupplies(const SystemRoot& root) {
    std::vector<PowerSupply> supplies;
    const std::string base = root.path(folder) + '/';
    for (const std::string& name : listFolder(base)) {
        const std::string device = base + name + '/';
        // uevent repeats every attribute, but makes the driver ask the battery for all of them: it is read
        // only where the attributes themselves are missing, as in many captures.
        std::optional<std::string> uevent;
        const bool mayLack = !root.isHost() || !exists(device + "type");
        const auto attribute = [&](std::string_view key) {
            auto value = readAttribute(device + std::string(key));
            if (value && !value->empty()) return *value;
            if (!mayLack) return std::string();
            if (!uevent) uevent = readTable(device + "uevent").value_or("");
            return std::string(ueventValue(*uevent, key));
        };
        supplies.push_back(describePowerSupply(name, attribute));
    }
    return supplies;
}

} // namespace sysinfo::platform
