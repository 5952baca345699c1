#pragma once

#include "core/GpuDevice.h"
#include "core/PowerSplit.h"

#include <memory>
#include <string>
#include <vector>

namespace sysinfo::platform {

class NvidiaGpus;

/// The energy of dedicated GPUs, as "GPU" channels. A GPU inside a processor gives none: the processor's
/// counters have it already. A GPU that sleeps is left alone and gives no channel.
///
/// Intel's and NVIDIA's drivers count energy; AMD's tells the power of the moment, which is added up over the
/// time between samples.
class GpuEnergy {
public:
    GpuEnergy(const SystemRoot& root, std::shared_ptr<NvidiaGpus> nvidia);

    bool empty() const { return meters_.empty() && !nvidia_; }

    /// Appends the channels as of `nanoseconds` on a steady clock.
    void sample(uint64_t nanoseconds, EnergySample& out);

private:
    struct Meter {
        GpuDevice gpu;
        std::string file;       ///< of the energy, or of the power
        bool isPower = false;   ///< otherwise it counts energy
        uint64_t sampledAt = 0; ///< 0 when the sample before failed
        double microjoules = 0;
    };

    bool read(Meter& meter, uint64_t nanoseconds) const;

    SystemRoot root_;
    std::vector<Meter> meters_;
    std::shared_ptr<NvidiaGpus> nvidia_; ///< null where there is none
};

} // namespace sysinfo::platform
