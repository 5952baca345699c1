#pragma once

#include "monitor/Snapshot.h"

#include <array>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace quarn {

/// Whose naming the keys of temperatures follow.
enum class SensorNaming {
    intel,        ///< of Intel machines, and of all sensors that this system names itself
    appleSilicon, ///< of Apple's own processors
};

/// The temperature sensors reduced to one figure for each part of the machine: the hottest of its sensors.
class SensorGroups {
public:
    /// A part of the machine: the beginning of its keys, which is also its short name in settings, and what
    /// people call it.
    struct Slot {
        std::string_view prefix;
        std::string_view name;
    };
    struct Maximum {
        std::string_view prefix; ///< of the slot
        double celsius = 0;
    };

    /// The slots in the order in which they are shown. A sensor belongs to the slot whose prefix its key
    /// begins with, and to none when there is no such slot.
    static std::span<const Slot> slotNames(SensorNaming naming);

    /// The hottest sensor of each slot that has one, in the order of the slots.
    static std::vector<Maximum> maxima(std::span<const Sensor> temperatures, SensorNaming naming);

    /// The slot under which a slot's colour scale is looked up: on Intel machines CPU and GPU share the
    /// scales of the slots that carry them on Apple's processors.
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 2> intelScaleKeys{
        {{"TC", "Tp"}, {"TG", "Tg"}}};
    static std::string_view scaleKey(std::string_view prefix, SensorNaming naming);
};

} // namespace quarn
