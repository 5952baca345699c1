#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <optional>

namespace quarn {

/// All processes of one name together: what stands for an application where nobody tells these apart.
struct BusyProgram {
    Text name;
    double cpuPercent = 0; ///< 100 means one fully used core
};

/// The one that uses most of the processor, by name between equals; nullopt when shares are not known. Costs
/// one look at each process.
std::optional<BusyProgram> busiestProgram(const SharedList<ProcInfo>& processes, const Known& known);

} // namespace quarn
