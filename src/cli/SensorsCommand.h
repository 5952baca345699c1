#pragma once

#include "cli/JsonWriter.h"
#include "cli/TerminalText.h"
#include "ui/modules/SensorSections.h"

#include <string>
#include <vector>

namespace sysinfo {
class SMC;
}

namespace quarn::cli {

/// Reads every sensor once, waiting up to two seconds for slow ones. Sections without a sensor are left out;
/// sensors that are kept asleep are listed with the reason.
std::vector<SensorSection> readSensorReport(sysinfo::SMC& smc);

/// The report as an aligned table with a blank line between its sections.
std::string sensorText(const std::vector<SensorSection>& sections, Charset charset);
/// The same as a list of objects: key, name, kind, part, value, unit, max, critical, reason.
void writeSensors(JsonWriter& json, const std::vector<SensorSection>& sections);

} // namespace quarn::cli
