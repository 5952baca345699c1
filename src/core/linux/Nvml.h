#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sysinfo::platform {

/// What NVIDIA's management library tells of one GPU; absent what this GPU does not measure.
struct NvidiaReading {
    std::string slot; ///< on the PCI bus, "0000:17:00.0"
    std::string name;
    uint32_t cores = 0; ///< 0 when unknown
    std::optional<double> busyPercent;
    std::optional<uint64_t> memUsed; ///< bytes
    std::optional<uint64_t> memTotal;
    std::optional<uint64_t> energyMillijoules; ///< since the driver was loaded
    std::optional<double> watts;
};

/// A session with NVIDIA's management library, which comes with the driver and is looked for at run time.
/// While one is open no NVIDIA GPU can sleep, and opening one wakes them all. Calls can take seconds.
class Nvml {
public:
    /// Opens `library` ("libnvidia-ml.so.1") and a session; null when either fails.
    static std::unique_ptr<Nvml> open(const std::string& library);
    virtual ~Nvml() = default;
    virtual std::vector<NvidiaReading> read() = 0;
};

/// The bus address as the library writes it ("00000000:17:00.0") in the kernel's form.
std::string slotOfBusId(std::string_view busId);

} // namespace sysinfo::platform
