#pragma once

#include "core/PowerSplit.h"
#include "core/SystemRoot.h"

#include <functional>
#include <memory>
#include <optional>

namespace sysinfo {

/// Where energy counters come from.
class EnergySource {
public:
    virtual ~EnergySource() = default;
    /// The counters that can be read now; nullopt when the machine has none at all.
    virtual std::optional<EnergySample> sample() = 0;
};

/// Whether this user can learn what the domains of a machine spend.
enum class EnergyAccess { none, denied, open };

namespace platform {
EnergyAccess energyAccess(const SystemRoot& root);
/// The energy counters of processors, memory and GPUs. Most are open to root only: those that may not be read
/// are left out, never 0. No counter contains another. Belongs to one thread.
std::unique_ptr<EnergySource> openEnergySource(const SystemRoot& root);
} // namespace platform

/// Turns the energy spent since the previous sample into watts by domain. Belongs to one queue at a time.
///
/// With SC_DEBUG set in the environment at construction, each sample writes what every channel gained to
/// standard error.
class IOReport {
public:
    /// Takes the first sample. `nanoseconds` is a clock that no adjustment moves; `systemWatts` gives the
    /// power of the whole machine, or no finite number.
    IOReport(std::unique_ptr<EnergySource> source, std::function<uint64_t()> nanoseconds,
             std::function<double()> systemWatts);

    /// The counters of this machine with its own clock and sensors; created on first use, lives as long as
    /// the program.
    static IOReport& shared();

    bool ready() const { return ready_; }

    /// Averages since the previous call, or since construction; all 0 when nothing was measured.
    SCPower sample();

private:
    void debug(const EnergySample& gained, double seconds) const;

    std::unique_ptr<EnergySource> source_;
    std::function<uint64_t()> nanoseconds_;
    std::function<double()> systemWatts_;
    bool debug_ = false;
    bool ready_ = false;
    EnergySample previousSample_;
    uint64_t previousTime_ = 0;
};

} // namespace sysinfo
