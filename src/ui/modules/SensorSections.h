#pragma once

#include "core/SMCConnection.h"
#include "monitor/SensorGroups.h"
#include "ui/modules/ReadingStyle.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The sensors of a machine as lists show them: by part of the machine, then by kind.
namespace quarn {

struct SensorKind {
    char letter;            ///< of its keys
    std::string_view name;  ///< in JSON
    std::string_view title; ///< of its section
    std::string_view unit;
    std::string_view unitName; ///< in JSON
    int decimals;
};

std::span<const SensorKind> sensorKinds();
/// The kind of a key; temperatures for a letter of no kind.
const SensorKind& sensorKind(char letter);

struct SensorRow {
    std::string key;
    std::string name;
    std::optional<double> value; ///< in the unit of its kind
    std::optional<double> max;
    std::optional<double> critical;
    std::string_view reason; ///< why there is no value; empty when there is one

    bool operator==(const SensorRow&) const = default;
};

/// Sensors of one kind; the temperatures come in a section for each part of the machine.
struct SensorSection {
    std::string_view title; ///< "CPU", "Fans"
    char kind = 'T';        ///< 'T', 'F', 'V', 'I', 'P'
    std::vector<SensorRow> rows;

    bool operator==(const SensorSection&) const = default;
};

/// Values by key.
using SensorReadings = std::map<std::string, double, std::less<>>;

/// Sections without a sensor are left out; sensors that have no value are listed with the reason, except
/// those whose answers are not plausible. Readings that no description belongs to come after the others of
/// their section.
std::vector<SensorSection> sensorSections(std::span<const sysinfo::SensorDescription> sensors,
                                          const SensorReadings& readings,
                                          SensorNaming naming = SensorNaming::intel);

/// "54.0 °C", "1900 rpm"; "—" for none.
std::string sensorFigure(const std::optional<double>& value, const SensorKind& kind,
                         const ReadingStyle& style = {});

} // namespace quarn
