#include "cli/SensorsCommand.h"

#include "cli/TextTable.h"
#include "core/SMCSensors.h"
#include "monitor/SMCKeyNames.h"
#include "monitor/SensorGroups.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <span>
#include <thread>

namespace quarn::cli {
namespace {

using sysinfo::SensorDescription;
using sysinfo::SensorState;
using sysinfo::SMC;
using sysinfo::SMCSensors;

constexpr std::chrono::milliseconds patience{2000};
constexpr std::chrono::milliseconds energyInterval{300};

struct Kind {
    char letter;
    std::string_view name;  ///< in JSON
    std::string_view title; ///< of its section
    std::string_view unit;
    std::string_view unitName; ///< in JSON
    int decimals;
};

constexpr Kind kinds[] = {
    {'T', "temperature", "Other temperatures", "°C", "celsius", 1},
    {'F', "fan", "Fans", "rpm", "rpm", 0},
    {'V', "voltage", "Voltages", "V", "volt", 3},
    {'I', "current", "Currents", "A", "ampere", 2},
    {'P', "power", "Power", "W", "watt", 1},
};

const Kind& kindOf(char letter) {
    const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                     [letter](const Kind& kind) { return kind.letter == letter; });
    return found == std::end(kinds) ? kinds[0] : *found;
}

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

using Readings = std::map<std::string, double>;

// The drivers count in thousandths; what a float adds to that is noise.
double withoutNoise(double value) { return std::round(value * 1000) / 1000; }

Readings readAll(SMC& smc, SMCSensors& sensors) {
    std::vector<SCSensor> out(smc.keys().size());
    const int room = static_cast<int>(out.size());
    Readings readings;
    for (const Kind& kind : kinds) {
        const int count = kind.letter == 'T' ? sensors.temps(out.data(), room)
                                             : sensors.keys(kind.letter, out.data(), room);
        for (const SCSensor& sensor : std::span(out).first(static_cast<size_t>(count))) {
            readings[sensor.name] = withoutNoise(sensor.value);
        }
    }
    return readings;
}

Readings readWithPatience(SMC& smc) {
    SMCSensors sensors(smc);
    readAll(smc, sensors);
    smc.settle(patience);
    // An energy counter tells its power only by a second look.
    const auto system = smc.describe(sysinfo::smcCode("PSTR"));
    if (system && system->state == SensorState::waiting && system->chip == "psys") {
        std::this_thread::sleep_for(energyInterval);
    }
    return readAll(smc, sensors);
}

std::optional<SensorRow> rowOf(const SensorDescription& sensor, const Readings& readings) {
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

std::string figure(const std::optional<double>& value, const Kind& kind) {
    if (!value) return std::string(format::unknown);
    return fmt::format("{:.{}f} {}", *value, kind.decimals, kind.unit);
}

std::string remarks(const SensorRow& row, const Kind& kind) {
    if (!row.reason.empty()) return std::string(row.reason);
    std::string text;
    if (row.max) text = "max " + figure(row.max, kind);
    if (row.critical) text += (text.empty() ? "critical " : ", critical ") + figure(row.critical, kind);
    return text;
}

void writeFigure(JsonWriter& json, std::string_view name, const std::optional<double>& value) {
    json.key(name);
    if (value) {
        json.number(*value);
    } else {
        json.null();
    }
}

} // namespace

std::vector<SensorSection> readSensorReport(SMC& smc) {
    const Readings readings = readWithPatience(smc);
    const auto slots = SensorGroups::slotNames(SensorNaming::intel);
    std::vector<SensorSection> sections;
    for (const auto& slot : slots) sections.push_back({slot.name, 'T', {}});
    for (const Kind& kind : kinds) sections.push_back({kind.title, kind.letter, {}});
    for (const SensorDescription& sensor : smc.sensors()) {
        auto row = rowOf(sensor, readings);
        if (!row) continue;
        const char kind = row->key.front();
        const auto slot = std::find_if(slots.begin(), slots.end(),
                                       [&](const auto& one) { return row->key.starts_with(one.prefix); });
        // Keys of a controller may be of kinds that are no measurement.
        const auto byKind = std::find_if(sections.begin() + std::ssize(slots), sections.end(),
                                         [kind](const SensorSection& one) { return one.kind == kind; });
        const auto section = slot != slots.end() ? sections.begin() + (slot - slots.begin()) : byKind;
        if (section != sections.end()) section->rows.push_back(std::move(*row));
    }
    std::erase_if(sections, [](const SensorSection& section) { return section.rows.empty(); });
    return sections;
}

std::string sensorText(const std::vector<SensorSection>& sections, Charset charset) {
    TextTable table({{"Sensor"}, {"Value", Align::right}, {"Key"}, {"Limits"}}, charset);
    for (const SensorSection& section : sections) {
        table.add({"", "", "", ""});
        table.add({std::string(section.title), "", "", ""});
        const Kind& kind = kindOf(section.kind);
        for (const SensorRow& row : section.rows) {
            table.add({"  " + row.name, figure(row.value, kind), row.key, remarks(row, kind)});
        }
    }
    return table.text();
}

void writeSensors(JsonWriter& json, const std::vector<SensorSection>& sections) {
    json.beginArray();
    for (const SensorSection& section : sections) {
        const Kind& kind = kindOf(section.kind);
        for (const SensorRow& row : section.rows) {
            json.beginObject();
            json.key("key");
            json.string(row.key);
            json.key("name");
            json.string(row.name);
            json.key("kind");
            json.string(kind.name);
            json.key("part");
            section.title == kind.title ? json.null() : json.string(section.title);
            writeFigure(json, "value", row.value);
            json.key("unit");
            json.string(kind.unitName);
            writeFigure(json, "max", row.max);
            writeFigure(json, "critical", row.critical);
            json.key("reason");
            row.reason.empty() ? json.null() : json.string(row.reason);
            json.endObject();
        }
    }
    json.endArray();
}

} // namespace quarn::cli
