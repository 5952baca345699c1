#include "monitor/SensorGroups.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace quarn {

namespace {

constexpr SensorGroups::Slot intelSlots[] = {
    {"TC", "CPU"},
    {"TG", "GPU"},
    {"TM", "Memory"},
    {"TH", "Disks"},
    {"TN", "NVMe disks"},
    {"TB", "Battery"},
    {"TP", "Chipset and power supply"},
    {"Tm", "Mainboard"},
    {"TW", "Network"},
    {"TA", "Surroundings"},
};

constexpr SensorGroups::Slot appleSlots[] = {
    {"Tp", "Performance cores"},
    {"Te", "Efficiency cores"},
    {"Tg", "GPU"},
    {"Tm", "Memory"},
    {"TH", "Disks"},
    {"TB", "Battery"},
    {"TW", "Network"},
    {"Ta", "Surroundings"},
};

} // namespace

std::span<const SensorGroups::Slot> SensorGroups::slotNames(SensorNaming naming) {
    if (naming == SensorNaming::appleSilicon) return appleSlots;
    return intelSlots;
}

std::vector<SensorGroups::Maximum> SensorGroups::maxima(std::span<const Sensor> temperatures,
                                                        SensorNaming naming) {
    std::vector<Maximum> result;
    for (const Slot& slot : slotNames(naming)) {
        std::optional<double> hottest;
        for (const Sensor& sensor : temperatures) {
            if (!sensor.name.starts_with(slot.prefix) || !std::isfinite(sensor.value)) continue;
            hottest = std::max(hottest.value_or(sensor.value), sensor.value);
        }
        if (hottest) result.push_back({slot.prefix, *hottest});
    }
    return result;
}

std::string_view SensorGroups::scaleKey(std::string_view prefix, SensorNaming naming) {
    if (naming == SensorNaming::intel) {
        for (const auto& [slot, scale] : intelScaleKeys) {
            if (slot == prefix) return scale;
        }
    }
    return prefix;
}

} // namespace quarn
