#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace quarn {

/// The kinds of reading that status items, panels and tiles show, in the order in which they are offered.
enum class WidgetKind { cpu, memory, gpu, temperature, network, disk, power };

inline constexpr std::array allWidgetKinds{WidgetKind::cpu,         WidgetKind::memory,  WidgetKind::gpu,
                                           WidgetKind::temperature, WidgetKind::network, WidgetKind::disk,
                                           WidgetKind::power};

/// The text that stands for a kind in settings: "cpu", "memory", …
std::string_view widgetKindId(WidgetKind kind);
std::optional<WidgetKind> widgetKindFromId(std::string_view id);

/// How a person wants readings written.
struct ReadingStyle {
    bool fahrenheit = false;
    bool networkInBits = false;
};

/// What one snapshot says of each kind. A reading that is not known is "—" in texts and NaN in values.
struct Reading {
    const Snapshot& snapshot;
    Known known{};
    ReadingStyle style{};
    std::optional<double> temperature{}; ///< °C, the representative one of the machine

    static std::string title(WidgetKind kind); ///< "CPU", "Memory", …
    /// The one big figure of a panel, a popover or a tile: "37 %", "1.20 MB/s".
    std::string headline(WidgetKind kind) const;
    /// The line below it: "load 2.31 of 8 cores", "6.21 of 15.6 GiB".
    std::string caption(WidgetKind kind) const;
    /// The numbers of its graph: one, or two for network (received, sent) and disk (read, written).
    std::vector<double> values(WidgetKind kind) const;
    /// The fixed-width text of a status item; padded on the left with blanks so that the item keeps its
    /// width.
    std::string menuBarText(WidgetKind kind) const;
};

/// The representative temperature of the machine: the hottest of the first group that has any, of CPU, GPU,
/// and the rest. nullopt without sensors.
std::optional<double> representativeTemperature(const Snapshot& snapshot);

} // namespace quarn
