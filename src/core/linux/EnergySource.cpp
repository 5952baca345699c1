#include "core/IOReport.h"
#include "core/linux/GpuEnergy.h"
#include "core/linux/NvidiaGpus.h"
#include "core/linux/Powercap.h"
#include "core/platform.h"

namespace sysinfo::platform {

namespace {

class Counters final : public EnergySource {
public:
    explicit Counters(const SystemRoot& root) : powercap_(root), gpus_(root, NvidiaGpus::of(root)) {}

    std::optional<EnergySample> sample() override {
        if (powercap_.empty() && gpus_.empty()) return {};
        EnergySample channels;
        const uint64_t now = monotonicRawNs();
        powercap_.sample(now, channels);
        gpus_.sample(now, channels);
        return channels;
    }

private:
    Powercap powercap_;
    GpuEnergy gpus_;
};

} // namespace

EnergyAccess energyAccess(const SystemRoot& root) {
    const Powercap processors(root);
    const GpuEnergy gpus(root, NvidiaGpus::of(root));
    if (processors.readable()) return EnergyAccess::open;
    if (!processors.empty()) return EnergyAccess::denied;
    return gpus.empty() ? EnergyAccess::none : EnergyAccess::open;
}

std::unique_ptr<EnergySource> openEnergySource(const SystemRoot& root) {
    return std::make_unique<Counters>(root);
}

} // namespace sysinfo::platform
