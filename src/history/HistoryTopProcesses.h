#pragma once

#include "history/HistorySample.h"

namespace quarn {

/// The busiest processes over the last seconds, for the samples of the history: ranked by a smoothed CPU
/// share, so that the list does not change with every blip. A process is known by its pid and start time.
///
/// Costs a walk over each new process list, and nothing while the list is the one before. Belongs to one
/// thread at a time.
class HistoryTopProcesses {
public:
    static constexpr size_t count = 5;
    static constexpr double smoothing = 10; ///< seconds, the time constant of the moving average

    /// The busiest with what they use now, the busiest first; of equal ones that with the lower pid. Fewer
    /// where fewer did anything.
    const SharedList<HistoryProc>& update(const Snapshot& snapshot);

private:
    struct Average {
        int64_t pid = 0;
        std::optional<uint64_t> start; ///< microseconds since the epoch
        double cpu = 0;
        const ProcInfo* process = nullptr; ///< while the list is walked
    };
    void advance(const SharedList<ProcInfo>& processes, double weight);
    void rank();

    int64_t generation_ = 0; ///< of the process list
    WallTime listedAt_{};
    std::vector<Average> averages_; ///< of those that did anything lately, ascending by pid
    std::vector<Average> next_;
    SharedList<HistoryProc> top_;
};

} // namespace quarn
