#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <optional>
#include <vector>

namespace quarn {

/// All processes of one name together: what people take for one application.
struct ProcessGroup {
    Text name;
    size_t processes = 0;
    std::optional<double> cpuPercent{}; ///< 100 means one fully used core; absent when none of them is known
    std::optional<uint64_t> memBytes{};
};

enum class GroupOrder { cpu, memory };

/// The `limit` groups that use most, the largest first; what is unknown comes last, and names decide between
/// equals. Costs one look at each process.
std::vector<ProcessGroup> topGroups(const SharedList<ProcInfo>& processes, const Known& known,
                                    GroupOrder order, size_t limit);

} // namespace quarn
