#pragma once

#include "monitor/Snapshot.h"

#include <optional>
#include <vector>

namespace quarn {

/// The cumulative counters behind SystemRates at one moment.
struct SystemCounters {
    SCMem mem{};
    uint64_t contextSwitches = 0; ///< of the whole machine
};

/// The rates between two readings `elapsed` seconds apart; a counter that fell counts as 0, and so does
/// everything when no time has passed.
SystemRates deriveRates(const SystemCounters& previous, const SystemCounters& current, double elapsed);

/// The counters of one process instance in an earlier list.
struct ProcessIO {
    uint64_t read = 0;
    uint64_t write = 0;
    uint64_t contextSwitches = 0;
    std::optional<uint64_t> energy; ///< nanojoules
    std::optional<uint64_t> start;  ///< microseconds since the epoch
    int64_t pid = 0;
    bool accessible = false;
    bool ioKnown = false;
};

/// Gives each process the rates since the list before. Both lists ascend by pid. A process is compared only
/// with itself: a reused pid has another start time and starts at zero.
void applyIORates(std::vector<ProcInfo>& processes, const std::vector<ProcessIO>& previous, double elapsed);

/// The counters of `processes` for the next call, into `out`, whose storage is reused.
void keepCounters(const std::vector<ProcInfo>& processes, std::vector<ProcessIO>& out);

/// Gives each disk its rates since the list before, matched by name.
void applyDiskRates(std::vector<DiskDevice>& disks, const SharedList<DiskDevice>& previous, double elapsed);

/// (current − previous) / elapsed, 0 for a counter that fell or when no time has passed.
double rateBetween(uint64_t previous, uint64_t current, double elapsed);

} // namespace quarn
