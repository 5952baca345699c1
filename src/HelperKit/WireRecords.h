#pragma once

#include <cstdint>
#include <cstdio> // where stdout and stderr are macros, they are so for every user of this header
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

/// One TCP or UDP socket with the process that owns it.
struct SocketRecord {
    int64_t pid = 0;
    std::string name;      ///< of the process
    int64_t proto = 0;     ///< IP protocol number
    int64_t ipVersion = 0; ///< 4 or 6
    std::string local;
    int64_t localPort = 0;
    std::optional<std::string> remote; ///< absent without a peer
    int64_t remotePort = 0;
    int64_t tcpState = 0; ///< BSD numbering, −1 for UDP
    uint64_t socketID = 0;

    /// The sockets of every process that this one may inspect; empty on failure. Blocks for some
    /// milliseconds on a machine with thousands of sockets.
    static std::vector<SocketRecord> readAll();

    bool operator==(const SocketRecord&) const = default;
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

/// Which build answers at the other end.
struct VersionInfo {
    int64_t major = 0;
    int64_t minor = 0;
    int64_t patch = 0;
    int64_t build = 0;
    std::string buildDate;

    bool operator==(const VersionInfo&) const = default;
};

/// The outcome of a command that the helper ran.
struct CommandResult {
    std::string stdout;
    std::string stderr;
    int32_t exitCode = 0;
    bool timedOut = false;
    std::optional<std::string> launchError; ///< why it could not be started
    bool outputTruncated = false;           ///< it wrote more than is kept

    bool succeeded() const { return !failureDescription(); }
    /// The first thing that went wrong, for the user or the log; absent on success.
    std::optional<std::string> failureDescription() const;

    bool operator==(const CommandResult&) const = default;
};

} // namespace quarn
