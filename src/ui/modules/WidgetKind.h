#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/ReadingStyle.h"

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
    /// The sum of `values`: what a graph of one line shows.
    double value(WidgetKind kind) const;
    /// The fixed-width text of a status item; padded on the left with blanks so that the item keeps its
    /// width.
    std::string menuBarText(WidgetKind kind) const;
    /// The same in three characters where that is possible, for a square of a few pixels: "37", "54°", ".7M",
    /// "12W".
    std::string shortText(WidgetKind kind) const;
};

/// The value at the top of a kind's graph; 0 where that follows what is shown.
constexpr double fullScale(WidgetKind kind) {
    switch (kind) {
    case WidgetKind::cpu:
    case WidgetKind::memory:
    case WidgetKind::gpu:
    case WidgetKind::temperature: return 100;
    case WidgetKind::network:
    case WidgetKind::disk:
    case WidgetKind::power: return 0;
    }
    return 0;
}

/// The representative temperature of the machine: the hottest of the first group that has any, of CPU, GPU,
/// and the rest. nullopt without sensors.
std::optional<double> representativeTemperature(const Snapshot& snapshot);

} // namespace quarn
