#pragma once

#include "core/GpuDevice.h"
#include "core/sc.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace sysinfo {

/// What one GPU does. Shares are in percent, 0 to 100; what it does not tell is absent.
struct GpuReading {
    GpuDevice device;
    bool asleep = false; ///< powered down, and left so: busy with nothing
    /// The shares are added up from programs, and those of other users could not be seen.
    bool ownProcessesOnly = false;
    std::optional<double> busy;       ///< of its busiest part
    std::optional<double> renderer;   ///< drawing
    std::optional<double> tiler;      ///< sorting geometry, on GPUs that do it apart
    std::optional<uint64_t> memUsed;  ///< bytes
    std::optional<uint64_t> memAlloc; ///< bytes: its own memory, or what programs were given of the system's
    std::optional<double> watts;
};

/// The greatest shares and the sum of the memories of all GPUs.
SCGpuStats combineGpus(std::span<const GpuReading> readings);

namespace platform {
/// What the reading of GPUs keeps from one sample to the next. Belongs to one thread at a time.
class GpuReaders;
std::shared_ptr<GpuReaders> openGpuReaders(const SystemRoot& root);
/// Reads every GPU as of `nanoseconds` on a steady clock into `out`. Never wakes one and never waits for a
/// driver that does not answer.
void readGpus(GpuReaders& readers, uint64_t nanoseconds, std::vector<GpuReading>& out);
} // namespace platform

/// Watches the GPUs. Some tell their load only as work done so far, so that it is known from the second
/// sample on. Belongs to one thread at a time.
class GpuSampler {
public:
    explicit GpuSampler(const SystemRoot& root) : readers_(platform::openGpuReaders(root)) {}

    /// Valid until the next call.
    const std::vector<GpuReading>& sample();

private:
    std::shared_ptr<platform::GpuReaders> readers_;
    std::vector<GpuReading> readings_;
};

} // namespace sysinfo
