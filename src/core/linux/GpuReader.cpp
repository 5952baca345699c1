#include "core/GpuStats.h"
#include "core/linux/Files.h"
#include "core/linux/GpuClients.h"
#include "core/linux/GpuDevices.h"
#include "core/linux/NvidiaGpus.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

/// Drivers that tell their load only through the descriptors of their clients.
constexpr std::array<std::string_view, 9> clientDrivers{"i915", "xe",  "panfrost", "panthor",   "lima",
                                                        "msm",  "v3d", "etnaviv",  "virtio_gpu"};

bool tellsByClients(const GpuDevice& gpu) {
    return std::find(clientDrivers.begin(), clientDrivers.end(), gpu.driver) != clientDrivers.end();
}

std::optional<uint64_t> readBytes(const std::string& path) {
    const auto number = readNumber(path);
    return number && *number >= 0 ? std::optional(static_cast<uint64_t>(*number)) : std::nullopt;
}

} // namespace

class GpuReaders {
public:
    explicit GpuReaders(const SystemRoot& root)
        : root_(root), nvidia_(NvidiaGpus::of(root)), descriptors_(root) {}

    void read(uint64_t nanoseconds, std::vector<GpuReading>& out) {
        listWhenChanged();
        sampleClients(nanoseconds);
        const auto nvidia = nvidia_ ? nvidia_->read(nanoseconds) : std::vector<NvidiaReading>();
        out.clear();
        for (const GpuDevice& gpu : gpus_) {
            GpuReading reading;
            reading.device = gpu;
            if (!isAwake(root_, gpu)) {
                reading.asleep = true;
                reading.busy = 0;
            } else if (gpu.driver == "nvidia") {
                takeNvidia(nvidia, reading);
            } else if (tellsByClients(gpu)) {
                takeClients(reading);
            } else {
                takeAttributes(reading);
            }
            out.push_back(std::move(reading));
        }
    }

private:
    /// Describes the GPUs anew when one came or went: names are looked up in long tables.
    void listWhenChanged() {
        auto cards = listFolder(root_.path("sys/class/drm"));
        if (listed_ && cards == cards_) return;
        cards_ = std::move(cards);
        gpus_ = listGpus(root_);
        listed_ = true;
    }

    void sampleClients(uint64_t nanoseconds) {
        if (std::none_of(gpus_.begin(), gpus_.end(), tellsByClients)) return;
        descriptors_.update();
        const double seconds =
            clientsAt_ == 0 ? 0 : static_cast<double>(static_cast<int64_t>(nanoseconds - clientsAt_)) / 1e9;
        clientLoads_ = loads_.advance(descriptors_.read(), seconds);
        loadsKnown_ = seconds > 0;
        clientsAt_ = nanoseconds;
    }

    void takeClients(GpuReading& reading) const {
        reading.ownProcessesOnly = descriptors_.someDenied();
        // No client at work is no load, which is known once there are two samples to compare.
        if (loadsKnown_ && descriptors_.someSeen()) reading.busy = 0;
        for (const DrmLoad& load : clientLoads_) {
            if (load.driver != reading.device.driver || load.slot != reading.device.slot) continue;
            if (load.busy) reading.busy = load.busy;
            reading.renderer = load.renderer;
            reading.tiler = load.tiler;
            reading.memUsed = load.residentBytes;
            reading.memAlloc = load.totalBytes;
        }
    }

    void takeAttributes(GpuReading& reading) const {
        const std::string folder = root_.path(reading.device.folder);
        if (const auto busy = readNumber(folder + "gpu_busy_percent"); busy && *busy >= 0 && *busy <= 100)
            reading.busy = static_cast<double>(*busy);
        reading.memUsed = readBytes(folder + "mem_info_vram_used");
        reading.memAlloc = readBytes(folder + "mem_info_vram_total");
        for (const std::string& monitor : listFolder(folder + "hwmon"))
            for (const std::string_view file : {"/power1_average", "/power1_input"}) {
                const auto microwatts = readNumber(folder + "hwmon/" + monitor + std::string(file));
                if (microwatts && !reading.watts) reading.watts = static_cast<double>(*microwatts) / 1e6;
            }
    }

    static void takeNvidia(const std::vector<NvidiaReading>& readings, GpuReading& reading) {
        for (const NvidiaReading& gpu : readings) {
            if (gpu.slot != reading.device.slot) continue;
            if (!gpu.name.empty()) reading.device.name = gpu.name;
            reading.device.cores = gpu.cores;
            reading.busy = gpu.busyPercent;
            reading.memUsed = gpu.memUsed;
            reading.memAlloc = gpu.memTotal;
            reading.watts = gpu.watts;
        }
    }

    SystemRoot root_;
    std::shared_ptr<NvidiaGpus> nvidia_;
    std::vector<std::string> cards_;
    std::vector<GpuDevice> gpus_;
    bool listed_ = false;
    DrmDescriptors descriptors_;
    DrmLoads loads_;
    std::vector<DrmLoad> clientLoads_;
    uint64_t clientsAt_ = 0;
    bool loadsKnown_ = false;
};

std::shared_ptr<GpuReaders> openGpuReaders(const SystemRoot& root) {
    return std::make_shared<GpuReaders>(root);
}

void readGpus(GpuReaders& readers, uint64_t nanoseconds, std::vector<GpuReading>& out) {
    readers.read(nanoseconds, out);
}

} // namespace sysinfo::platform
