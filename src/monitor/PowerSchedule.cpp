#include "monitor/PowerSchedule.h"

#include <algorithm>

namespace quarn {

namespace {

/// The longest time between two readings of a nominal period, with a second for the job itself.
double lifetime(const SamplingPlan& plan, double period) {
    return std::max(PowerReadings::currentWindow, plan.wholeTicks(period) + plan.tick / 2 + 1);
}

} // namespace

PowerReads PowerSchedule::due(double at, const SamplingPlan& plan, const PowerDemand& demand) const {
    const bool helperCurrent = demand.helper && readings.helperIsCurrent(at);
    const bool splitNeeded = demand.split && !(helperCurrent && readings.helper->power.available);
    PowerReads reads;
    reads.system = plan.isDue(Resource::systemPower, at - systemAt);
    reads.split = splitNeeded && plan.isDue(Resource::powerSplit, at - splitAt);
    reads.helper = demand.split && demand.helper && plan.isDue(Resource::powerSplit, at - helperAt);
    reads.helperResumes = reads.helper && !helperCurrent;
    reads.splitLifetime = lifetime(plan, 4);
    reads.systemLifetime = lifetime(plan, 2);
    return reads;
}

void PowerSchedule::land(const PowerSample& sample, const PowerReads& reads, double at) {
    if (reads.system) {
        systemAt = at;
        dcWatts = sample.dcWatts;
        if (sample.systemWatts) {
            readings.system = PowerReadings::System{*sample.systemWatts, at, reads.systemLifetime};
            systemLanded = true;
        }
    }
    if (reads.split) {
        splitAt = at;
        splitLifetime = reads.splitLifetime;
        if (sample.split) readings.local = PowerReadings::Split{*sample.split, at, reads.splitLifetime};
    }
    if (reads.helper) {
        helperAt = at;
        if (sample.helper) {
            readings.helper = PowerReadings::Helper{*sample.helper, at, reads.splitLifetime};
            // The local figures stop here: shown again later they would be old.
            if (reads.helperResumes && sample.helper->available) readings.local.reset();
        }
    }
}

} // namespace quarn
