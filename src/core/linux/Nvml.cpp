#include "core/linux/Nvml.h"

#include "core/CleanText.h"

#include <array>
#include <dlfcn.h>
#include <string_view>

namespace sysinfo::platform {

namespace {

// The little of the library's interface that is used, by its documented layout.
using Result = int; // 0 is success
using Device = void*;
struct PciInfo {
    char busIdLegacy[16];
    unsigned domain, bus, device, pciDeviceId, pciSubSystemId;
    char busId[32];
};
struct Utilization {
    unsigned gpu, memory; // percent
};
struct Memory {
    unsigned long long total, free, used; // bytes
};

struct CloseLibrary {
    void operator()(void* library) const { ::dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

/// One function of the library, empty when this version lacks it.
template <class... Arguments>
class Function {
public:
    void load(void* library, const char* name) {
        function_ = reinterpret_cast<Result (*)(Arguments...)>(::dlsym(library, name));
    }
    explicit operator bool() const { return function_ != nullptr; }
    /// Whether the call succeeded.
    bool operator()(Arguments... arguments) const { return function_ && function_(arguments...) == 0; }

private:
    Result (*function_)(Arguments...) = nullptr;
};

class Session final : public Nvml {
public:
    explicit Session(Library library) : library_(std::move(library)) {
        void* from = library_.get();
        init_.load(from, "nvmlInit_v2");
        shutdown_.load(from, "nvmlShutdown");
        count_.load(from, "nvmlDeviceGetCount_v2");
        handle_.load(from, "nvmlDeviceGetHandleByIndex_v2");
        pciInfo_.load(from, "nvmlDeviceGetPciInfo_v3");
        name_.load(from, "nvmlDeviceGetName");
        cores_.load(from, "nvmlDeviceGetNumGpuCores");
        utilization_.load(from, "nvmlDeviceGetUtilizationRates");
        memory_.load(from, "nvmlDeviceGetMemoryInfo");
        energy_.load(from, "nvmlDeviceGetTotalEnergyConsumption");
        power_.load(from, "nvmlDeviceGetPowerUsage");
    }
    ~Session() override {
        if (isOpen_) shutdown_();
    }

    bool start() {
        isOpen_ = shutdown_ && count_ && handle_ && pciInfo_ && init_();
        return isOpen_;
    }

    std::vector<NvidiaReading> read() override {
        std::vector<NvidiaReading> readings;
        unsigned count = 0;
        if (!count_(&count)) return readings;
        for (unsigned i = 0; i < count; ++i) {
            Device device = nullptr;
            PciInfo pci{};
            if (!handle_(i, &device) || !pciInfo_(device, &pci)) continue;
            pci.busId[sizeof pci.busId - 1] = '\0';
            readings.push_back(readDevice(device, slotOfBusId(pci.busId)));
        }
        return readings;
    }

private:
    NvidiaReading readDevice(Device device, std::string slot) const {
        NvidiaReading reading;
        reading.slot = std::move(slot);
        std::array<char, 96> name{};
        if (name_(device, name.data(), static_cast<unsigned>(name.size() - 1)))
            reading.name = scutil::cleanText(name.data());
        unsigned cores = 0;
        if (cores_(device, &cores)) reading.cores = cores;
        Utilization utilization{};
        if (utilization_(device, &utilization) && utilization.gpu <= 100)
            reading.busyPercent = utilization.gpu;
        Memory memory{};
        if (memory_(device, &memory)) {
            reading.memUsed = memory.used;
            reading.memTotal = memory.total;
        }
        unsigned long long millijoules = 0;
        if (energy_(device, &millijoules)) reading.energyMillijoules = millijoules;
        unsigned milliwatts = 0;
        if (power_(device, &milliwatts)) reading.watts = milliwatts / 1000.0;
        return reading;
    }

    Library library_;
    bool isOpen_ = false;
    Function<> init_, shutdown_;
    Function<unsigned*> count_;
    Function<unsigned, Device*> handle_;
    Function<Device, PciInfo*> pciInfo_;
    Function<Device, char*, unsigned> name_;
    Function<Device, unsigned*> cores_;
    Function<Device, Utilization*> utilization_;
    Function<Device, Memory*> memory_;
    Function<Device, unsigned long long*> energy_;
    Function<Device, unsigned*> power_;
};

} // namespace

std::unique_ptr<Nvml> Nvml::open(const std::string& path) {
    Library library(::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL));
    if (!library) return nullptr;
    auto session = std::make_unique<Session>(std::move(library));
    if (!session->start()) return nullptr;
    return session;
}

std::string slotOfBusId(std::string_view busId) {
    std::string slot;
    for (const char c : busId) slot += c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    while (slot.find(':') > 4 && slot.starts_with('0')) slot.erase(0, 1);
    return slot;
}

} // namespace sysinfo::platform
