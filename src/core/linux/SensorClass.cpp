#include "core/linux/SensorClass.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>

namespace sysinfo::platform {

namespace {

struct Prefix {
    std::string_view text;
    SensorClass sensorClass;
};

using enum SensorClass;

// Names of drivers and, on boards without one, of thermal zones. The first that fits counts.
constexpr Prefix chipNames[] = {
    {"coretemp", cpu},
    {"k10temp", cpu},
    {"k8temp", cpu},
    {"zenpower", cpu},
    {"zenergy", cpu},
    {"fam15h_power", cpu},
    {"via_cputemp", cpu},
    {"cpu", cpu},
    {"soc", cpu},
    {"x86_pkg", cpu},
    {"bcm2835", cpu},
    {"bigcore", cpu},
    {"littlecore", cpu},
    {"cluster", cpu},
    {"package", cpu},
    {"TCPU", cpu},
    {"occ", cpu},
    {"amdgpu", gpu},
    {"radeon", gpu},
    {"nouveau", gpu},
    {"i915", gpu},
    {"xe", gpu},
    {"gpu", gpu},
    {"jc42", memory},
    {"spd5118", memory},
    {"dimm", memory},
    {"ddr", memory},
    {"dram", memory},
    {"drivetemp", disk},
    {"nvme", nvme},
    {"BAT", battery},
    {"battery", battery},
    {"iwlwifi", network},
    {"ath1", network},
    {"mt7", network},
    {"r8169", network},
    {"rtw", network},
    {"i350", network},
    {"bnxt", network},
    {"mlx", network},
    {"ixgbe", network},
    {"tg3", network},
    {"be2net", network},
    {"cxgb", network},
    {"sfp", network},
    {"phy", network},
    {"pch", powerSupply},
    {"pmbus", powerSupply},
    {"corsairpsu", powerSupply},
    {"power_meter", powerSupply},
    {"ucsi", powerSupply},
    {"AC", powerSupply},
    {"sht", ambient},
    {"hdc", ambient},
    {"ambient", ambient},
};

// Beginnings of labels, in lower case.
constexpr Prefix labels[] = {
    {"cpu", cpu},         {"peci", cpu},        {"package", cpu},     {"tctl", cpu},
    {"gpu", gpu},         {"sodimm", memory},   {"dimm", memory},     {"memory", memory},
    {"dram", memory},     {"ambient", ambient}, {"air", ambient},     {"inlet", ambient},
    {"exhaust", ambient}, {"vrm", powerSupply}, {"pch", powerSupply}, {"chipset", powerSupply},
    {"ssd", disk},        {"hdd", disk},        {"nand", disk},       {"m.2", disk},
    {"battery", battery}, {"wifi", network},    {"wlan", network},
};

std::optional<SensorClass> match(std::span<const Prefix> table, std::string_view text) {
    for (const Prefix& row : table) {
        if (text.starts_with(row.text)) return row.sensorClass;
    }
    return {};
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

struct NamedSensor {
    std::string_view chip;
    std::string_view label; ///< empty fits any
};

bool isIn(std::span<const NamedSensor> table, std::string_view chip, std::string_view label) {
    return std::any_of(table.begin(), table.end(), [&](const NamedSensor& row) {
        return row.chip == chip && (row.label.empty() || row.label == label);
    });
}

} // namespace

char keyLetter(SensorKind kind) {
    constexpr std::string_view letters = "TFVIP";
    return letters[static_cast<size_t>(kind)];
}

SensorClass classOfChip(std::string_view name, std::string_view devicePath, uint32_t pciClass) {
    const auto contains = [&](std::string_view part) { return devicePath.find(part) != std::string::npos; };
    if (contains("/power_supply/")) return battery;
    if (const auto known = match(chipNames, name)) return *known;
    if (contains("/ieee80211/") || contains("/net/")) return network;
    if (contains("/nvme/")) return nvme;
    switch (pciClass >> 16) {
    case 0x01: return (pciClass >> 8) == 0x0108 ? nvme : disk;
    case 0x02: return network;
    case 0x03: return gpu;
    default: return board;
    }
}

SensorClass classOfSensor(SensorClass chip, std::string_view label) {
    return chip == board ? match(labels, lowerCase(label)).value_or(board) : chip;
}

bool measuresSystemPower(std::string_view chipName, std::string_view label) {
    constexpr NamedSensor table[] = {{"power_meter", ""},
                                     {"macsmc_hwmon", "Total System Power"},
                                     {"ibmpowernv", "System"},
                                     {"corsairpsu", "power total"}};
    return isIn(table, chipName, label);
}

bool measuresInputPower(std::string_view chipName, std::string_view label) {
    constexpr NamedSensor table[] = {{"macsmc_hwmon", "AC Input Power"}};
    return isIn(table, chipName, label);
}

HwmonAttribute parseHwmonAttribute(std::string_view fileName) {
    struct KindName {
        std::string_view text;
        SensorKind kind;
    };
    constexpr KindName kinds[] = {{"temp", SensorKind::temperature},
                                  {"fan", SensorKind::fan},
                                  {"in", SensorKind::voltage},
                                  {"curr", SensorKind::current},
                                  {"power", SensorKind::power}};
    struct ItemName {
        std::string_view text;
        HwmonAttribute::Item item;
    };
    using Item = HwmonAttribute::Item;
    constexpr ItemName items[] = {{"input", Item::input},  {"average", Item::average}, {"label", Item::label},
                                  {"max", Item::max},      {"crit", Item::crit},       {"fault", Item::fault},
                                  {"enable", Item::enable}};
    for (const KindName& row : kinds) {
        if (!fileName.starts_with(row.text)) continue;
        std::string_view rest = fileName.substr(row.text.size());
        const auto number = scutil::toNumber<uint16_t>(scutil::takeUntil(rest, '_'));
        if (!number) continue; // "intrusion0_alarm" begins as a voltage does
        HwmonAttribute attribute{row.kind, *number, Item::other};
        for (const ItemName& item : items) {
            if (item.text == rest) attribute.item = item.item;
        }
        return attribute;
    }
    return {};
}

} // namespace sysinfo::platform
