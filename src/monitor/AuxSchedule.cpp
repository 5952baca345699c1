#include "monitor/AuxSchedule.h"

#include "core/IOReport.h"
#include "core/SMCSensors.h"
#include "monitor/HelperClient.h"

#include <cmath>

namespace quarn {

namespace {

constexpr size_t mostSensors = 1024;

template <class Fill>
std::vector<Sensor> collect(Fill fill) {
    std::vector<SCSensor> records(mostSensors);
    const int count = fill(records.data(), static_cast<int>(records.size()));
    std::vector<Sensor> sensors;
    sensors.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const auto& record = records[static_cast<size_t>(i)];
        sensors.push_back({record.name, record.value});
    }
    return sensors;
}

} // namespace

AuxReads AuxSchedule::due(double at, const SamplingPlan& plan, const AuxDemand& demand) const {
    if (busy) return {};
    AuxReads reads;
    reads.power = power.due(at, plan, {.split = demand.splitUsers > 0, .helper = demand.helperActive});
    reads.temperatures = demand.temperaturesWanted &&
                         (demand.noTemperatureYet || plan.isDue(Resource::temperatures, at - temperaturesAt));
    reads.smcKeys = demand.sensorUsers > 0 && plan.isDue(Resource::smcKeys, at - smcKeysAt);
    return reads;
}

AuxResult readAux(const AuxReads& reads, sysinfo::SMCSensors& sensors, sysinfo::IOReport& energy,
                  HelperClient& helper, std::set<std::string> verifiedRails) {
    AuxResult result;
    if (reads.power.system) {
        const double total = sensors.value("PSTR");
        result.power.systemWatts = std::isfinite(total) ? total : 0;
        const double input = sensors.value("PDTR");
        if (std::isfinite(input) && input > 0) result.power.dcWatts = input;
    }
    if (reads.power.split) result.power.split = energy.sample();
    if (reads.power.helper) result.power.helper = helper.fetchPower(std::chrono::seconds(1));
    if (reads.temperatures)
        result.temperatures = collect([&](SCSensor* out, int max) { return sensors.temps(out, max); });
    if (reads.smcKeys) {
        const auto keys = [&](char kind) {
            return collect([&](SCSensor* out, int max) { return sensors.keys(kind, out, max); });
        };
        result.electrical =
            SMCMeasurements::electrical(keys('P'), keys('V'), keys('I'), std::move(verifiedRails));
        result.fans = keys('F');
    }
    return result;
}

} // namespace quarn
