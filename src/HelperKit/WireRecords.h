#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarn {

/// One process as the privileged helper sees it.
struct HelperProcess {
    int64_t pid = 0;
    int64_t ppid = 0;
    int64_t uid = 0;
    std::string name;
    std::string user;
    std::string state;
    std::string path;
    double cpuPercent = 0; ///< of one core
    uint64_t memBytes = 0;
    int64_t threads = 0;
    uint64_t cpuTimeNs = 0;
    uint64_t startTime = 0;                  ///< whole seconds since the epoch
    std::optional<uint64_t> startTimeMicros; ///< with `pid` the identity of a process instance
    bool accessible = false;
    uint64_t diskRead = 0; ///< cumulative bytes
    uint64_t diskWrite = 0;
    uint64_t contextSwitches = 0;
    std::optional<uint64_t> energyNj;

    bool operator==(const HelperProcess&) const = default;
};

struct HelperProcessList {
    std::vector<HelperProcess> processes;
    int64_t totalThreads = 0;

    bool operator==(const HelperProcessList&) const = default;
};

/// Power and frequencies as the privileged helper measured them.
struct HelperPower {
    std::optional<double> sampledAt; ///< seconds since the epoch
    double sysWatts = 0;
    double cpuWatts = 0;
    double gpuWatts = 0;
    double aneWatts = 0;
    double dramWatts = 0;
    bool available = false;
    double eFreqMHz = 0;
    double pFreqMHz = 0;
    double gpuFreqMHz = 0;
    double combinedWatts = 0;
    std::string source; ///< which reading produced the figures

    bool operator==(const HelperPower&) const = default;
};

} // namespace quarn
