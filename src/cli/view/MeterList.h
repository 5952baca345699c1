#pragma once

#include "cli/view/Meters.h"

#include <vector>

namespace quarn::cli {

/// The meter of the CPUs together.
Meter cpuMeter(const Snapshot& snapshot, const Known& known);

/// The load of the CPUs over time, where there is room beside their meter.
Meter cpuHistory(const Trends& trends);

/// The further meters of a machine in the order of their importance; what it does not have has none.
std::vector<Meter> otherMeters(const Snapshot& snapshot, const Known& known, const Trends* trends);

} // namespace quarn::cli
