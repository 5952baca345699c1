#pragma once

#include "monitor/AppActivity.h"
#include "monitor/ProcessOwners.h"
#include "monitor/TextNumbers.h"

#include <span>
#include <vector>

namespace quarn {

/// Charges applications for what their processes did since the process list before. A process is compared
/// only with itself: one that is new, or whose pid was another's, starts with its first list and adds nothing
/// yet. Since growth is charged when it is seen, what an ended process did stays with its application.
/// Belongs to one thread at a time.
class AppProcessCounters {
public:
    using Growth = AppGrowth;

    /// One round over a list with the owners of its processes, in the same order: every application that has
    /// a process, once. Valid until the next round. Lists that ascend by pid are compared faster.
    std::span<const AppActivity> sample(std::span<const ProcInfo> processes,
                                        std::span<const ProcessOwner> owners);

private:
    struct Baseline {
        int64_t pid = 0;
        std::optional<uint64_t> start; ///< microseconds since the epoch
        bool accessible = false;
        bool ioKnown = false;
        uint64_t cpuNs = 0;
        uint64_t diskRead = 0;
        uint64_t diskWrite = 0;
        uint64_t contextSwitches = 0;
        std::optional<uint64_t> energyNj;
    };
    void begin(size_t expecting);
    Growth record(const ProcInfo& process);
    const Baseline* find(int64_t pid);
    static Growth growthBetween(const Baseline& before, const ProcInfo& now);

    std::vector<Baseline> baselines_; ///< of the latest list
    std::vector<Baseline> before_;    ///< of the one before, ascending by pid
    size_t at_ = 0;                   ///< where the next pid is expected in `before_`
    TextNumbers apps_;                ///< of one round
    std::vector<AppActivity> activity_;
};

} // namespace quarn
