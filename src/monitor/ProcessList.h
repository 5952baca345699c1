#pragma once

#include "monitor/Snapshot.h"

#include <vector>

namespace sysinfo {
struct ProcessInfo;
}

namespace quarn {

/// The processes of the local sampler, rates still zero; ascending by pid like theirs.
std::vector<ProcInfo> fromSampler(const std::vector<sysinfo::ProcessInfo>& processes);

/// The processes of the privileged helper, rates still zero, in ascending order of pid.
std::vector<ProcInfo> fromHelper(const HelperProcessList& list);

} // namespace quarn
