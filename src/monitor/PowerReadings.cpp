#include "monitor/PowerReadings.h"

#include <algorithm>

namespace quarn {

namespace {

template <class Reading>
bool isCurrent(const std::optional<Reading>& reading, double at) {
    if (!reading) return false;
    const double age = at - reading->acquired;
    return age >= -1 && age < reading->lifetime;
}

void takeHelper(const HelperPower& from, PowerView& view) {
    view.power.cpuWatts = from.cpuWatts;
    view.power.gpuWatts = from.gpuWatts;
    view.power.aneWatts = from.aneWatts;
    view.power.dramWatts = from.dramWatts;
    view.power.available = true;
    view.powerSource = from.source.empty() ? "helper" : from.source;
}

void takeLocal(const SCPower& from, PowerView& view) {
    view.power = from;
    view.powerSource = "IOReport";
}

void addWhatOnlyLocalHas(const SCPower& from, PowerView& view) {
    view.power.encoderWatts = from.encoderWatts;
    view.power.decoderWatts = from.decoderWatts;
    view.power.ispWatts = from.ispWatts;
    view.power.displayWatts = from.displayWatts;
}

} // namespace

bool isPowermetrics(const HelperPower& power) { return power.source == "powermetrics"; }

bool PowerReadings::helperIsCurrent(double at) const { return isCurrent(helper, at); }

PowerView PowerReadings::snapshot(double at, bool helperEnabled) const {
    PowerView view;
    const bool helperCurrent = helperEnabled && isCurrent(helper, at);
    const bool localCurrent = isCurrent(local, at);
    const bool helperSplits = helperEnabled && helper && helper->power.available;
    const bool localSplits = local && local->power.available;

    if (helperCurrent && helperSplits) {
        takeHelper(helper->power, view);
        if (localCurrent) addWhatOnlyLocalHas(local->power, view);
    } else if (localCurrent && localSplits) {
        takeLocal(local->power, view);
    } else if (helperSplits && (!localSplits || helper->acquired >= local->acquired)) {
        takeHelper(helper->power, view);
        view.powerStale = true;
    } else if (localSplits) {
        takeLocal(local->power, view);
        view.powerStale = true;
    } else if (localCurrent) {
        view.power = local->power; // without a split there may still be a display
    }

    const bool helperTotals = helperCurrent && helper->power.sysWatts > 0 && !isPowermetrics(helper->power);
    if (isCurrent(system, at) && system->watts > 0)
        view.power.sysWatts = system->watts;
    else if (helperTotals)
        view.power.sysWatts = helper->power.sysWatts;
    else
        view.power.sysWatts = localCurrent ? local->power.sysWatts : 0;
    if (view.powerSource.empty() && view.power.sysWatts > 0) view.powerSource = "SMC";
    if (helperCurrent) view.freq = helper->power;
    return view;
}

} // namespace quarn
