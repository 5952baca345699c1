#pragma once

#include "monitor/NetworkRate.h"
#include "monitor/Snapshot.h"

namespace quarn {

/// What applications compete for.
enum class ResourceKind { cpu, memory, disk, network, energy };

/// What one process uses now, or several together.
struct ResourceUsage {
    double cpuPercent = 0; ///< 100 means one fully used core
    int64_t threads = 0;
    uint64_t cpuTimeNs = 0;
    uint64_t memBytes = 0;
    double diskRead = 0; ///< bytes per second
    double diskWrite = 0;
    NetworkRate network;
    std::optional<double> watts; ///< absent when no process tells

    /// What at least one of the processes tells; the rest is 0 above, and shown as unknown.
    struct Known {
        bool measured = false; ///< CPU, threads and memory
        bool disk = false;
        bool network = false;
    } known;

    ResourceUsage& operator+=(const ResourceUsage& other);
};

ResourceUsage usageOf(const ProcInfo& process, const NetworkRates& network);

/// The figure that a kind ranks by. A missing power counts as 0.
double measure(const ResourceUsage& usage, ResourceKind kind);

} // namespace quarn
