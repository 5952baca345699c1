#pragma once

#include "core/PowerSplit.h"
#include "core/SystemRoot.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sysinfo::platform {

/// Makes one ever-growing total of a hardware counter that starts again at 0 after its range.
class EnergyCounter {
public:
    /// Takes in the counter as read `seconds` after the last time and gives the total so far. A fall is a
    /// wrap as long as that is credible; a counter that was set back, or left unread for so long that it may
    /// have wrapped unseen, begins a new `epoch`.
    uint64_t advance(uint64_t raw, uint64_t range, double seconds);

    uint64_t total() const { return total_; }
    uint32_t epoch() const { return epoch_; }

private:
    std::optional<uint64_t> last_;
    uint64_t total_ = 0;
    uint32_t epoch_ = 0;
};

/// One energy counter of the power-capping framework.
struct PowercapZone {
    std::string id;   ///< "intel-rapl:0:1": driver, package, part of it
    std::string name; ///< "package-0", "core", "uncore", "dram", "psys"
    std::string folder;
    uint64_t rangeMicrojoules = 0; ///< 0 when the counter does not wrap
};

/// All zones, ascending by driver and number. What a second driver repeats ("package-0" through memory-mapped
/// registers) is left out with all its parts.
std::vector<PowercapZone> listPowercapZones(const SystemRoot& root);

/// The energy of processors and their memory, from nested counters that must not be added up:
///
/// - "CPU Energy" of a package is the package less its "uncore", which is the GPU on it. The part "core" is
///   not used: it leaves out caches and the memory controller, and on some processors holds one core only.
/// - "GPU" is the "uncore".
/// - "DRAM" is the "dram", which no package contains.
/// - "psys", the whole machine, contains them all and gives no channel.
///
/// So the channels add up to the packages and their memory. A counter that may not be read gives no channel;
/// if that is only the "uncore", "CPU Energy" contains the GPU.
class Powercap {
public:
    explicit Powercap(const SystemRoot& root);

    bool empty() const { return packages_.empty() && memories_.empty(); }

    /// Whether this user may read the counter of a package.
    bool readable() const;

    /// Appends the channels as of `nanoseconds` on a steady clock.
    void sample(uint64_t nanoseconds, EnergySample& out);

private:
    struct Counter {
        explicit Counter(PowercapZone which) : zone(std::move(which)) {}
        PowercapZone zone;
        EnergyCounter energy;
        uint64_t readAt = 0;
        bool read(uint64_t nanoseconds);
    };
    struct Package {
        explicit Package(PowercapZone which) : whole(std::move(which)) {}
        Counter whole;
        std::optional<Counter> graphics;
        std::string id;              ///< of the channel sampled last
        int64_t processorEnergy = 0; ///< never falls under one id
    };

    static void samplePackage(Package& package, uint64_t nanoseconds, EnergySample& out);

    std::vector<Package> packages_;
    std::vector<Counter> memories_;
};

} // namespace sysinfo::platform
