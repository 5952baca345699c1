#include "core/linux/GpuEnergy.h"

#include "core/linux/Files.h"
#include "core/linux/GpuDevices.h"
#include "core/linux/NvidiaGpus.h"

namespace sysinfo::platform {

namespace {

/// The first file of `names` that exists, empty when none does.
std::string firstFile(const std::string& folder, std::initializer_list<std::string_view> names) {
    for (const auto name : names)
        if (exists(folder + std::string(name))) return folder + std::string(name);
    return {};
}

} // namespace

GpuEnergy::GpuEnergy(const SystemRoot& root, std::shared_ptr<NvidiaGpus> nvidia)
    : root_(root), nvidia_(std::move(nvidia)) {
    for (const GpuDevice& gpu : listGpus(root)) {
        const std::string monitors = root.path(gpu.folder + "hwmon/");
        for (const std::string& name : listFolder(monitors)) {
            const std::string folder = monitors + name + '/';
            Meter meter{gpu, firstFile(folder, {"energy1_input"}), false, 0, 0};
            if (meter.file.empty()) {
                // Only a GPU inside a processor has this rail, and its power is that of the whole processor.
                if (readAttribute(folder + "in1_label") == "vddnb") continue;
                meter.file = firstFile(folder, {"power1_average", "power1_input"});
                meter.isPower = true;
            }
            if (!meter.file.empty()) meters_.push_back(std::move(meter));
        }
    }
}

bool GpuEnergy::read(Meter& meter, uint64_t nanoseconds) const {
    const uint64_t before = meter.sampledAt;
    meter.sampledAt = 0;
    if (!isAwake(root_, meter.gpu)) return false;
    const auto value = readNumber(meter.file);
    if (!value || *value < 0) return false;
    meter.sampledAt = nanoseconds;
    if (!meter.isPower)
        meter.microjoules = static_cast<double>(*value);
    else if (before > 0)
        meter.microjoules += static_cast<double>(*value) * static_cast<double>(nanoseconds - before) / 1e9;
    return true;
}

void GpuEnergy::sample(uint64_t nanoseconds, EnergySample& out) {
    for (Meter& meter : meters_)
        if (read(meter, nanoseconds))
            out.push_back({meter.file, "GPU", "uJ", static_cast<int64_t>(meter.microjoules)});
    if (!nvidia_) return;
    for (const NvidiaReading& gpu : nvidia_->read(nanoseconds))
        if (gpu.energyMillijoules)
            out.push_back({gpu.slot, "GPU", "mJ", static_cast<int64_t>(*gpu.energyMillijoules)});
}

} // namespace sysinfo::platform
