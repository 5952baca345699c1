#include "core/linux/ProcessTable.h"

#include "core/Scan.h"
#include "core/linux/Cpu.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace sysinfo::platform {

namespace {

/// Readings between two full listings.
constexpr unsigned listEvery = 32;
/// Looking at one pid costs about as much as listing one process; beyond this many a listing is cheaper.
constexpr int32_t mostProbes = 1024;
/// The share of idle processes read in full with each reading. Little can change there: what is swapped out
/// counts as before.
constexpr size_t sliceDivisor = 512;

} // namespace

std::optional<uint64_t> processClock(int32_t pid) {
    // The kernel's encoding of "CPU clock of process `pid`, in scheduler time".
    const auto clock = static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3) | 2);
    timespec time{};
#if __LP64__
    // Past the library, which first tries its ways of not asking the kernel.
    if (::syscall(SYS_clock_gettime, clock, &time) != 0) return {};
#else
    if (::clock_gettime(clock, &time) != 0) return {};
#endif
    return static_cast<uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(time.tv_nsec);
}

ProcessTable::ProcessTable(const SystemRoot& root)
    : root_(root),
      stat_(root, "proc/stat"),
      loadavg_(root, "proc/loadavg"),
      useClocks_(root.isHost() && processClock(::getpid()).has_value()),
      reader_(root, bootTime(root).value_or(0)) {}

std::optional<std::span<const KernelProcess>> ProcessTable::read() {
    candidates_.clear();
    formerParents_.clear();

    // The order matters: what is created after this line is found by the next reading.
    const auto allocation = useClocks_ ? readAllocation() : std::nullopt;
    const bool mustList = processes_.empty() || ++sinceListing_ >= listEvery || !allocation;
    const bool listed = mustList || !probeNewPids(*allocation);
    if (listed) {
        if (!listPids()) return {};
        sinceListing_ = 0;
    }
    if (allocation && (listed || allocation->forks != probed_.forks)) {
        // A pid is allocated before its process can be seen, so the next look reaches back one step further.
        beforeProbed_ = probed_;
        probed_ = *allocation;
    }

    refreshKnown(listed);
    if (useClocks_) {
        refreshOrphans();
        refreshSlice();
    }
    dropGone();
    addNew();
    return processes_;
}

std::optional<ProcessTable::Allocation> ProcessTable::readAllocation() {
    const auto stat = stat_.read();
    const auto forks = stat ? parseStatNumber(*stat, "processes") : std::nullopt;
    auto load = loadavg_.read();
    if (!forks || !load) return {};
    for (int column = 0; column < 4; ++column) scutil::takeWord(*load);
    const auto lastPid = scutil::toNumber<int32_t>(scutil::trimmed(scutil::takeWord(*load)));
    if (!lastPid) return {};
    return Allocation{*forks, *lastPid};
}

bool ProcessTable::probeNewPids(const Allocation& now) {
    if (now.forks == probed_.forks) return true;
    const int32_t from = beforeProbed_.lastPid;
    const bool ascending = from > 0 && probed_.lastPid >= from && now.lastPid >= probed_.lastPid;
    if (!ascending || now.lastPid - from > mostProbes) return false;
    // More forks than pids: allocation wrapped around, was set back, or happens in another namespace too.
    if (now.forks - beforeProbed_.forks > static_cast<uint64_t>(now.lastPid - from)) return false;
    for (int32_t pid = from + 1; pid <= now.lastPid; ++pid)
        if (processClock(pid) && !isKnown(pid)) candidates_.push_back(pid);
    return true;
}

bool ProcessTable::isKnown(int32_t pid) const {
    const auto at = std::lower_bound(processes_.begin(), processes_.end(), pid,
                                     [](const KernelProcess& p, int32_t wanted) { return p.pid < wanted; });
    return at != processes_.end() && at->pid == pid;
}

bool ProcessTable::listPids() {
    if (!folder_) folder_.reset(::open(root_.path("proc").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder_ || ::lseek(folder_.get(), 0, SEEK_SET) < 0) return false;
    if (listing_.empty()) listing_.resize(32 * 1024);
    candidates_.clear();
    for (;;) {
        const long length = ::syscall(SYS_getdents64, folder_.get(), listing_.data(), listing_.size());
        if (length < 0) return false;
        if (length == 0) break;
        for (long at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(listing_.data() + at);
            at += entry->d_reclen;
            const auto pid = scutil::toNumber<int32_t>(entry->d_name);
            if (pid && *pid >= 0) candidates_.push_back(*pid);
        }
    }
    std::sort(candidates_.begin(), candidates_.end());

    // What was listed and is known stays; what is known and was not listed is gone.
    size_t keep = 0;
    size_t at = 0;
    for (const int32_t pid : candidates_) {
        while (at < watches_.size() && watches_[at].pid < pid) watches_[at++].gone = true;
        if (at < watches_.size() && watches_[at].pid == pid)
            ++at;
        else
            candidates_[keep++] = pid;
    }
    while (at < watches_.size()) watches_[at++].gone = true;
    candidates_.resize(keep);
    return true;
}

void ProcessTable::readFully(size_t index, std::optional<uint64_t> clock) {
    auto& process = processes_[index];
    const auto stateBefore = process.state;
    const uint64_t startBefore = process.startTimeMicros;
    switch (reader_.read(process)) {
    case ProcessReader::Outcome::gone: watches_[index].gone = true; return;
    case ProcessReader::Outcome::denied: process.measured = false; break;
    case ProcessReader::Outcome::read: break;
    }
    process.revision = ++revision_;
    watches_[index].clock = clock;
    using RunState = KernelProcess::RunState;
    const bool wasAnother = startBefore != 0 && startBefore != process.startTimeMicros;
    if (wasAnother || (process.state == RunState::zombie && stateBefore != RunState::zombie))
        formerParents_.push_back(process.pid);
    if (!clock || !process.measured) return;
    process.cpuTimeNs = *clock;
    // The main thread's letter says nothing of the others; a clock that advanced while reading does.
    if (process.state == RunState::sleeping && processClock(process.pid) > *clock)
        process.state = RunState::running;
}

void ProcessTable::refreshKnown(bool listed) {
    for (size_t i = 0; i < watches_.size(); ++i) {
        auto& watch = watches_[i];
        if (!watch.gone) {
            const auto clock = useClocks_ ? processClock(watch.pid) : std::nullopt;
            if (clock && clock == watch.clock) continue;
            if (useClocks_ && !clock && watch.clock && !listed)
                watch.gone = true;
            else
                readFully(i, clock);
        }
        if (watch.gone) formerParents_.push_back(watch.pid);
    }
}

void ProcessTable::refreshOrphans() {
    if (formerParents_.empty()) return;
    // Already ascending but for the rare zombie that is pushed twice.
    std::sort(formerParents_.begin(), formerParents_.end());
    const auto parents = formerParents_; // a reading below may find more, which the next reading handles
    for (size_t i = 0; i < processes_.size(); ++i)
        if (!watches_[i].gone && std::binary_search(parents.begin(), parents.end(), processes_[i].ppid))
            readFully(i, watches_[i].clock);
}

void ProcessTable::refreshSlice() {
    if (processes_.empty()) return;
    for (size_t left = processes_.size() / sliceDivisor + 1; left > 0; --left) {
        nextInSlice_ = (nextInSlice_ + 1) % processes_.size();
        if (!watches_[nextInSlice_].gone) readFully(nextInSlice_, watches_[nextInSlice_].clock);
    }
}

void ProcessTable::dropGone() {
    size_t keep = 0;
    for (size_t i = 0; i < processes_.size(); ++i) {
        if (watches_[i].gone) continue;
        if (keep != i) {
            processes_[keep] = std::move(processes_[i]);
            watches_[keep] = watches_[i];
        }
        ++keep;
    }
    processes_.resize(keep);
    watches_.resize(keep);
}

void ProcessTable::addNew() {
    const size_t known = processes_.size();
    for (const int32_t pid : candidates_) {
        processes_.emplace_back().pid = pid;
        watches_.emplace_back().pid = pid;
        readFully(processes_.size() - 1, useClocks_ ? processClock(pid) : std::nullopt);
    }
    dropGone();
    if (known == processes_.size()) return;
    // Both parts ascend; new pids nearly always follow the known ones.
    if (known == 0 || watches_[known - 1].pid < watches_[known].pid) return;
    const auto byPid = [](const auto& a, const auto& b) { return a.pid < b.pid; };
    std::inplace_merge(processes_.begin(), processes_.begin() + static_cast<ptrdiff_t>(known),
                       processes_.end(), byPid);
    std::inplace_merge(watches_.begin(), watches_.begin() + static_cast<ptrdiff_t>(known), watches_.end(),
                       byPid);
}

} // namespace sysinfo::platform
