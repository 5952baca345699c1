#include "ui/modules/SensorSections.h"

#include "monitor/SMCKeyNames.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <set>

namespace quarn {

namespace {

using sysinfo::SensorDescription;
using sysinfo::SensorState;

constexpr SensorKind kinds[] = {
    {'T', "temperature", "Other temperatures", "°C", "celsius", 1},
    {'F', "fan", "Fans", "rpm", "rpm", 0},
    {'V', "voltage", "Voltages", "V", "volt", 3},
    {'I', "current", "Currents", "A", "ampere", 2},
    {'P', "power", "Power", "W", "watt", 1},
};

std::string_view reasonFor(SensorState state) {
    switch (state) {
    case SensorState::asleep: return "asleep, and not woken for a reading";
    case SensorState::idle: return "at rest; asking could keep it awake";
    case SensorState::waiting: return "slow to answer";
    case SensorState::failing: return "gave no value";
    case SensorState::gone: return "removed";
    case SensorState::answering: break;
    }
    return "";
}

std::optional<SensorRow> rowOf(const SensorDescription& sensor, const SensorReadings& readings) {
    SensorRow row;
    row.key = sysinfo::smcText(sensor.key).data();
    row.name = SMCKeyNames::describe(sensor);
    row.max = sensor.max;
    row.critical = sensor.crit;
    const auto reading = readings.find(row.key);
    if (reading != readings.end()) {
        row.value = reading->second;
    } else if (sensor.state == SensorState::answering) {
        return {}; // what it answers is no plausible value
    } else {
        row.reason = reasonFor(sensor.state);
    }
    return row;
}

} // namespace

std::span<const SensorKind> sensorKinds() { return kinds; }

const SensorKind& sensorKind(char letter) {
    const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                     [letter](const SensorKind& kind) { return kind.letter == letter; });
    return found == std::end(kinds) ? kinds[0] : *found;
}

std::vector<SensorSection> sensorSections(std::span<const SensorDescription> sensors,
                                          const SensorReadings& readings, SensorNaming naming) {
    const auto slots = SensorGroups::slotNames(naming);
    std::vector<SensorSection> sections;
    for (const auto& slot : slots) sections.push_back({slot.name, 'T', {}});
    for (const SensorKind& kind : kinds) sections.push_back({kind.title, kind.letter, {}});
    std::set<std::string, std::less<>> listed;
    const auto add = [&](SensorRow row) {
        const char kind = row.key.front();
        const auto slot = std::find_if(slots.begin(), slots.end(),
                                       [&](const auto& one) { return row.key.starts_with(one.prefix); });
        // Keys of a controller may be of kinds that are no measurement.
        const auto byKind = std::find_if(sections.begin() + std::ssize(slots), sections.end(),
                                         [kind](const SensorSection& one) { return one.kind == kind; });
        const auto section = slot != slots.end() ? sections.begin() + (slot - slots.begin()) : byKind;
        listed.insert(row.key);
        if (section != sections.end()) section->rows.push_back(std::move(row));
    };
    for (const SensorDescription& sensor : sensors)
        if (auto row = rowOf(sensor, readings)) add(std::move(*row));
    for (const auto& [key, value] : readings) {
        if (key.empty() || listed.contains(key)) continue;
        const std::string known = SMCKeyNames::wellKnown(key);
        add({key, known.empty() ? key : known, value, {}, {}, {}});
    }
    std::erase_if(sections, [](const SensorSection& section) { return section.rows.empty(); });
    return sections;
}

std::string sensorFigure(const std::optional<double>& value, const SensorKind& kind,
                         const ReadingStyle& style) {
    if (!value || !std::isfinite(*value)) return std::string(format::unknown);
    if (kind.letter == 'T' && style.fahrenheit)
        return fmt::format("{:.{}f} °F", *value * 9 / 5 + 32, kind.decimals);
    return fmt::format("{:.{}f} {}", *value, kind.decimals, kind.unit);
}

} // namespace quarn
