#pragma once

#include "monitor/Snapshot.h"

#include <vector>

namespace sysinfo {
struct ProcessInfo;
}

namespace quarn {

/// The processes of the local sampler, rates still zero; ascending by pid like theirs. `list` may hold an
/// earlier list: a text that is still the same is then not copied again.
void fromSampler(const std::vector<sysinfo::ProcessInfo>& processes, std::vector<ProcInfo>& list);

/// The processes of the privileged helper, rates still zero, in ascending order of pid.
std::vector<ProcInfo> fromHelper(const HelperProcessList& list);

} // namespace quarn
