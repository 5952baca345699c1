#pragma once

#include "ui/modules/WidgetKind.h"

#include <string>
#include <vector>

namespace quarn {

/// One line of what stands behind a reading. Names may come from strangers.
struct DetailLine {
    std::string name;
    std::string figure;

    bool operator==(const DetailLine&) const = default;
};

/// The processes that use most of what `kind` measures (processor, memory, disks, energy), at most `count`
/// and the largest first. Those that use nothing, or of which it is not known, are left out; empty for kinds
/// of which a snapshot knows nothing by process.
std::vector<DetailLine> busiestProcesses(const Reading& reading, WidgetKind kind, size_t count);

/// What the snapshot says of `kind` beyond its headline: parts, interfaces, drives, sensors, at most `count`.
/// What is not known is left out.
std::vector<DetailLine> detailLines(const Reading& reading, WidgetKind kind, size_t count);

} // namespace quarn
