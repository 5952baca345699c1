#include "cli/SensorsCommand.h"

#include "cli/TextTable.h"
#include "core/SMCSensors.h"

#include <cmath>
#include <span>
#include <thread>

namespace quarn::cli {
namespace {

using sysinfo::SensorState;
using sysinfo::SMC;
using sysinfo::SMCSensors;

constexpr std::chrono::milliseconds patience{2000};
constexpr std::chrono::milliseconds energyInterval{300};

// The drivers count in thousandths; what a float adds to that is noise.
double withoutNoise(double value) { return std::round(value * 1000) / 1000; }

SensorReadings readAll(SMC& smc, SMCSensors& sensors) {
    std::vector<SCSensor> out(smc.keys().size());
    const int room = static_cast<int>(out.size());
    SensorReadings readings;
    for (const SensorKind& kind : sensorKinds()) {
        const int count = kind.letter == 'T' ? sensors.temps(out.data(), room)
                                             : sensors.keys(kind.letter, out.data(), room);
        for (const SCSensor& sensor : std::span(out).first(static_cast<size_t>(count))) {
            readings[sensor.name] = withoutNoise(sensor.value);
        }
    }
    return readings;
}

SensorReadings readWithPatience(SMC& smc) {
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

std::string remarks(const SensorRow& row, const SensorKind& kind) {
    if (!row.reason.empty()) return std::string(row.reason);
    std::string text;
    if (row.max) text = "max " + sensorFigure(row.max, kind);
    if (row.critical) text += (text.empty() ? "critical " : ", critical ") + sensorFigure(row.critical, kind);
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
    const SensorReadings readings = readWithPatience(smc); // which also finds the sensors
    return sensorSections(smc.sensors(), readings);
}

std::string sensorText(const std::vector<SensorSection>& sections, Charset charset) {
    TextTable table({{"Sensor"}, {"Value", Align::right}, {"Key"}, {"Limits"}}, charset);
    for (const SensorSection& section : sections) {
        table.add({"", "", "", ""});
        table.add({std::string(section.title), "", "", ""});
        const SensorKind& kind = sensorKind(section.kind);
        for (const SensorRow& row : section.rows) {
            table.add({"  " + row.name, sensorFigure(row.value, kind), row.key, remarks(row, kind)});
        }
    }
    return table.text();
}

void writeSensors(JsonWriter& json, const std::vector<SensorSection>& sections) {
    json.beginArray();
    for (const SensorSection& section : sections) {
        const SensorKind& kind = sensorKind(section.kind);
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
