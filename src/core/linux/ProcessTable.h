#pragma once

#include "core/linux/Files.h"
#include "core/linux/ProcessReader.h"
#include "core/platform.h"

#include <optional>
#include <span>
#include <vector>

namespace sysinfo::platform {

/// The CPU time of all threads of a process in nanoseconds, from its CPU clock: half a microsecond, for any
/// user's process. nullopt when there is no such process (a thread is none) or the clock is refused.
std::optional<uint64_t> processClock(int32_t pid);

/// The processes of a machine, kept from reading to reading at the least cost.
///
/// An idle process costs one look at its CPU clock: while the clock stands still the process has run no
/// instruction, so what is known of it still holds. A process whose clock moved is read in full. What can
/// change without the process running is covered apart: a new parent when the old one ended, and everything
/// else by reading a slice of the idle processes in turn.
///
/// New processes are found without listing the folder: while the kernel's count of forks stands still there
/// are none, and otherwise they have pids between the former last pid and the present one. A full listing now
/// and then, and whenever that reasoning does not hold, keeps it honest.
///
/// Under a captured root, or where CPU clocks are refused, every process is read in full each time.
class ProcessTable {
public:
    explicit ProcessTable(const SystemRoot& root);

    /// All processes in ascending order of pid, valid until the next call; nullopt when proc is unreadable.
    std::optional<std::span<const KernelProcess>> read();

private:
    /// The state of pid allocation at one moment.
    struct Allocation {
        uint64_t forks = 0;
        int32_t lastPid = 0;
    };

    std::optional<Allocation> readAllocation();
    bool listPids();
    /// Fills candidates_ with pids that may be new; false when only a full listing can tell.
    bool probeNewPids(const Allocation& now);
    void refreshKnown(bool listed);
    void refreshOrphans();
    void refreshSlice();
    void addNew();
    void dropGone();
    void readFully(size_t index, std::optional<uint64_t> clock);
    bool isKnown(int32_t pid) const;

    SystemRoot root_;
    KeptTable stat_;
    KeptTable loadavg_;
    scutil::UniqueFd folder_; ///< of proc, for listings
    std::vector<char> listing_;
    bool useClocks_;
    ProcessReader reader_;

    /// What the look at an idle process needs, apart from its record: it is small, so that thousands fit
    /// the processor's cache.
    struct Watch {
        std::optional<uint64_t> clock; ///< the CPU clock before the last full reading
        int32_t pid = 0;
        bool gone = false; ///< to be dropped
    };

    std::vector<KernelProcess> processes_; ///< ascending by pid
    std::vector<Watch> watches_;           ///< beside processes_
    std::vector<int32_t> candidates_;      ///< pids to be added, ascending
    std::vector<int32_t> formerParents_;   ///< pids that ended in this reading, ascending
    uint64_t revision_ = 0;
    size_t nextInSlice_ = 0;
    unsigned sinceListing_ = 0;
    Allocation probed_;       ///< at the last reading that looked for new pids
    Allocation beforeProbed_; ///< at the one before it
};

} // namespace sysinfo::platform
