#pragma once

#include "core/platform.h"
#include "core/sc.h"

namespace sysinfo {

/// Memory and swap as the machine counts them now; fields that could not be read stay 0, the pressure
/// level 1.
SCMem readMemStats(platform::Readers& readers);

/// The arithmetic of `readMemStats`.
SCMem deriveMemStats(const platform::MemoryCounters& counters);

} // namespace sysinfo
