#include "monitor/ResourceUsage.h"

namespace quarn {

ResourceUsage& ResourceUsage::operator+=(const ResourceUsage& other) {
    cpuPercent += other.cpuPercent;
    threads += other.threads;
    cpuTimeNs += other.cpuTimeNs;
    memBytes += other.memBytes;
    diskRead += other.diskRead;
    diskWrite += other.diskWrite;
    network.download += other.network.download;
    network.upload += other.network.upload;
    if (other.watts) watts = watts.value_or(0) + *other.watts;
    known.measured |= other.known.measured;
    known.disk |= other.known.disk;
    known.network |= other.known.network;
    return *this;
}

ResourceUsage usageOf(const ProcInfo& process, const NetworkRates& network) {
    ResourceUsage usage;
    usage.cpuPercent = process.cpuPercent;
    usage.threads = process.threads;
    usage.cpuTimeNs = process.cpuTimeNs;
    usage.memBytes = process.memBytes;
    usage.diskRead = process.diskReadRate;
    usage.diskWrite = process.diskWriteRate;
    usage.watts = process.watts;
    usage.known = {process.accessible, process.ioKnown, false};
    if (network.empty()) return usage;
    if (const auto rate = network.find(process.pid); rate != network.end()) {
        usage.network = rate->second;
        usage.known.network = true;
    }
    return usage;
}

double measure(const ResourceUsage& usage, ResourceKind kind) {
    switch (kind) {
    case ResourceKind::cpu: return usage.cpuPercent;
    case ResourceKind::memory: return static_cast<double>(usage.memBytes);
    case ResourceKind::disk: return usage.diskRead + usage.diskWrite;
    case ResourceKind::network: return usage.network.download + usage.network.upload;
    case ResourceKind::energy: return usage.watts.value_or(0);
    }
    return 0;
}

} // namespace quarn
