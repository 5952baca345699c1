#include "core/GpuStats.h"

#include "core/platform.h"

#include <algorithm>

namespace sysinfo {

SCGpuStats combineGpus(std::span<const GpuReading> readings) {
    SCGpuStats stats{-1, -1, -1, 0, 0};
    for (const GpuReading& gpu : readings) {
        stats.device = std::max(stats.device, gpu.busy.value_or(-1));
        stats.renderer = std::max(stats.renderer, gpu.renderer.value_or(-1));
        stats.tiler = std::max(stats.tiler, gpu.tiler.value_or(-1));
        stats.memUsed += gpu.memUsed.value_or(0);
        stats.memAlloc += gpu.memAlloc.value_or(0);
    }
    return stats;
}

const std::vector<GpuReading>& GpuSampler::sample() {
    platform::readGpus(*readers_, platform::monotonicRawNs(), readings_);
    return readings_;
}

} // namespace sysinfo
