#pragma once

#include "core/SystemRoot.h"
#include "core/linux/GpuFdinfo.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace sysinfo::platform {

/// Finds the descriptors of graphics devices among all processes. That is dear, so each call but the first
/// looks at a fifteenth of the processes only; in between the descriptors found are known.
class DrmDescriptors {
public:
    explicit DrmDescriptors(const SystemRoot& root) : root_(root) {}

    /// Looks on.
    void update();
    /// The usage of every known descriptor that can still be read.
    std::vector<DrmUsage> read();
    /// Whether some process could not be looked into.
    bool someDenied() const { return someDenied_; }
    /// Whether any could: not so on a captured machine that kept none.
    bool someSeen() const { return someSeen_; }

private:
    void scan(const std::string& pid);

    SystemRoot root_;
    std::map<std::string, std::vector<std::string>> known_; ///< fdinfo files by process
    std::deque<std::string> pending_;
    size_t slice_ = 0;
    bool started_ = false;
    bool someDenied_ = false;
    bool someSeen_ = false;
    bool deniedThisRound_ = false;
};

/// The load of one GPU, added up over its clients; shares in percent.
struct DrmLoad {
    std::string driver;
    std::string slot;
    std::optional<double> busy; ///< of the busiest kind of engine
    std::optional<double> renderer;
    std::optional<double> tiler;
    uint64_t residentBytes = 0;
    uint64_t totalBytes = 0;
};

/// Turns the clients' counters into loads. One client may show through many descriptors and processes: it
/// counts once, with the largest figures. A counter may fall: the larger one stays.
class DrmLoads {
public:
    /// Loads since the previous call; no shares on the first. A client seen for the first time gives none: it
    /// may be old.
    std::vector<DrmLoad> advance(const std::vector<DrmUsage>& usages, double seconds);

private:
    using Clients = std::map<std::string, DrmUsage>; ///< by GPU and client number

    Clients clients_;
};

} // namespace sysinfo::platform
