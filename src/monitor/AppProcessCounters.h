#pragma once

#include "monitor/ProcessOwners.h"
#include "monitor/TextNumbers.h"

#include <functional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quarn {

/// Hashes texts by what they say.
struct TextHash {
    size_t operator()(const Text& text) const { return std::hash<std::string_view>()(text.view()); }
};

/// Charges applications for what their processes did since the process list before. A process is compared
/// only with itself: one that is new, or whose pid was another's, starts with its first list and adds nothing
/// yet. Since growth is charged when it is seen, what an ended process did stays with its application.
/// Belongs to one thread at a time.
class AppProcessCounters {
public:
    /// What one process did since the list before.
    struct Growth {
        uint64_t cpuNs = 0;
        uint64_t diskRead = 0; ///< bytes
        uint64_t diskWrite = 0;
        uint64_t contextSwitches = 0;
        uint64_t energyNj = 0;
        bool energyKnown = false; ///< the process told its energy both times
    };
    using OnGrowth = std::function<void(const Text& app, const Growth& growth)>;
    /// Bytes of memory by application, for each that has a process.
    using Memory = std::unordered_map<Text, uint64_t, TextHash>;

    /// One round over a list with the owners of its processes, in the same order. `memory` is filled anew;
    /// `onGrowth` is called for each process that did anything, with its ProcessOwner::app.
    void sample(std::span<const ProcInfo> processes, std::span<const ProcessOwner> owners, Memory& memory,
                const OnGrowth& onGrowth);

    /// The parts of a round: `begin`, then `record` for each process. Processes recorded in ascending order
    /// of pid are found faster.
    void begin(size_t expecting);
    void record(const ProcInfo& process, const Text& app, const OnGrowth& onGrowth);

    /// The applications of which a process told its energy in this round.
    const std::unordered_set<Text, TextHash>& energyApps() const { return energyApps_; }

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
    const Baseline* find(int64_t pid);
    static Growth growthBetween(const Baseline& before, const ProcInfo& now);

    std::vector<Baseline> baselines_; ///< ascending by pid
    std::vector<Baseline> next_;
    TextNumbers apps_;               ///< of one call of `sample`
    std::vector<uint64_t> memBytes_; ///< by number in apps_
    size_t at_ = 0;                  ///< where the next pid is expected among the baselines
    std::unordered_set<Text, TextHash> energyApps_;
};

} // namespace quarn
