#pragma once

#include "core/Text.h"
#include "core/platform.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace sysinfo {

/// One process with the CPU share of the last interval.
struct ProcessInfo {
    int32_t pid = 0;
    int32_t ppid = 0;
    uint32_t uid = 0; ///< effective user
    Text name;        ///< for people: the kernel's name, or the executable's where the kernel cut it
    Text path;        ///< of the executable, empty when unknown
    Text user;        ///< account of `uid`, or its number
    Text state;       ///< "Starting", "Running", "Sleeping", "Stopped", "Zombie" or "—"
    double cpuPercent = 0;
    uint64_t memBytes = 0;
    uint32_t threads = 0;
    uint64_t cpuTimeNs = 0;
    uint64_t contextSwitches = 0;
    uint64_t diskRead = 0;
    uint64_t diskWrite = 0;
    uint64_t energyNj = 0;
    bool energyKnown = false;
    uint64_t startTime = 0;       ///< whole seconds since the epoch
    uint64_t startTimeMicros = 0; ///< since the epoch; with `pid` the identity of a process instance
    bool accessible = true;       ///< the measurements could be read
    bool ioKnown = false;         ///< `diskRead` and `diskWrite` could be read
    uint64_t revision = 0;        ///< of the reading that all of it but `cpuPercent` comes from
};

/// Account names by user number, asked once each.
class UserNames {
public:
    explicit UserNames(SystemRoot root) : root_(std::move(root)) {}
    const Text& name(uint32_t uid);

private:
    SystemRoot root_;
    std::unordered_map<uint32_t, Text> names_;
};

/// Lists every process and its CPU share since the previous call. The first call primes: every share is 0.
/// A share is never measured across two different processes that had the same pid.
class ProcessSampler {
public:
    explicit ProcessSampler(const SystemRoot& root) : users_(root) {}

    /// All processes in ascending order of pid. The list stays valid, and is reused, until the next call.
    /// A process table that cannot be read yields an empty list and leaves the state as it was, so that the
    /// next call measures over the longer interval.
    const std::vector<ProcessInfo>& sample(platform::Readers& readers);

    /// The arithmetic of `sample` on a table read at `nowNs` (CLOCK_MONOTONIC_RAW).
    const std::vector<ProcessInfo>& advance(std::span<const platform::KernelProcess> table, uint64_t nowNs);

    /// Sum of the thread counts of the last call.
    uint32_t totalThreads() const { return totalThreads_; }

private:
    ProcessInfo describe(const platform::KernelProcess& process);
    /// Brings one entry up to date; what it held is of the same pid in the former list, or empty.
    void update(ProcessInfo& info, const platform::KernelProcess& process, double elapsed);

    UserNames users_;
    std::vector<ProcessInfo> current_;
    std::vector<ProcessInfo> former_; ///< storage for the part of the list before that pids moved in
    uint64_t lastSampleNs_ = 0;       ///< 0 before the first call
    uint32_t totalThreads_ = 0;
};

/// The name people see. The executable's file name stands in for a kernel name that was cut or is shorter.
std::string_view displayName(std::string_view shortName, std::string_view path);

} // namespace sysinfo
