#pragma once

#include "monitor/PowerSchedule.h"
#include "monitor/SMCMeasurements.h"
#include "monitor/SamplingPlan.h"
#include "monitor/SharedList.h"
#include "monitor/Snapshot.h"

#include <limits>
#include <optional>
#include <vector>

namespace sysinfo {
class IOReport;
class SMCSensors;
} // namespace sysinfo

namespace quarn {

class HelperClient;

/// What one auxiliary job is to read.
struct AuxReads {
    PowerReads power;
    bool temperatures = false;
    bool smcKeys = false; ///< power, voltage, current and fan keys

    bool any() const { return power.any() || temperatures || smcKeys; }
};

/// What the auxiliary readings are wanted for.
struct AuxDemand {
    int sensorUsers = 0;
    int splitUsers = 0;
    bool helperActive = false;
    bool temperaturesWanted = false;
    bool noTemperatureYet = true; ///< a first reading is taken at once; a machine may have none to give
};

/// What one auxiliary job brought back; absent is what it was not asked for.
struct AuxResult {
    PowerSample power;
    std::optional<std::vector<Sensor>> temperatures;
    std::optional<SMCMeasurements::Electrical> electrical;
    std::optional<std::vector<Sensor>> fans;
};

/// When the slow readings were taken last. A value that belongs to the sampler queue; times are seconds on
/// the Monitor's steady scale.
struct AuxSchedule {
    PowerSchedule power;
    bool busy = false; ///< a job is under way; there is never more than one
    double temperaturesAt = -std::numeric_limits<double>::infinity();
    double smcKeysAt = -std::numeric_limits<double>::infinity();

    /// What is due at `at`; nothing while a job is under way.
    AuxReads due(double at, const SamplingPlan& plan, const AuxDemand& demand) const;
};

/// Reads what is asked for. Runs on the auxiliary queue and may take as long as the hardware does.
AuxResult readAux(const AuxReads& reads, sysinfo::SMCSensors& sensors, sysinfo::IOReport& energy,
                  HelperClient& helper, std::set<std::string> verifiedRails);

} // namespace quarn
