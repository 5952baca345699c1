#pragma once

#include "monitor/Snapshot.h"

namespace quarn::testing {

/// A second sample of a machine with `cores` logical CPUs and `processes` processes, the odd-numbered ones
/// owned by someone else (their disk figures unknown). The same arguments give the same snapshot.
Snapshot sampleSnapshot(size_t cores = 8, size_t processes = 40);

} // namespace quarn::testing
