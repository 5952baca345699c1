#pragma once

#include "cli/JsonWriter.h"
#include "cli/TerminalText.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo {
class SMC;
}

namespace quarn::cli {

/// One sensor as `quarn sensors` shows it.
struct SensorRow {
    std::string key;
    std::string name;
    std::optional<double> value; ///< in the unit of its section
    std::optional<double> max;
    std::optional<double> critical;
    std::string_view reason; ///< why there is no value; empty when there is one
};

/// Sensors of one kind; the temperatures come in a section for each part of the machine.
struct SensorSection {
    std::string_view title; ///< "CPU", "Fans"
    char kind = 'T';        ///< 'T', 'F', 'V', 'I', 'P'
    std::vector<SensorRow> rows;
};

/// Reads every sensor once, waiting up to two seconds for slow ones. Sections without a sensor are left out;
/// sensors that are kept asleep are listed with the reason.
std::vector<SensorSection> readSensorReport(sysinfo::SMC& smc);

/// The report as an aligned table with a blank line between its sections.
std::string sensorText(const std::vector<SensorSection>& sections, Charset charset);
/// The same as a list of objects: key, name, kind, part, value, unit, max, critical, reason.
void writeSensors(JsonWriter& json, const std::vector<SensorSection>& sections);

} // namespace quarn::cli
