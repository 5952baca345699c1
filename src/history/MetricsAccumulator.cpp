#include "history/MetricsAccumulator.h"

#include "history/ByteCount.h"
#include "history/HistoryTime.h"

#include <cmath>

namespace quarn {

namespace {

constexpr size_t mostNames = 4096; ///< a machine that builds software runs new programs for ever

void integrate(SystemMetrics& bucket, const MetricsSample& before, const MetricsSample& now, double dt) {
    bucket.seconds += dt;
    if (std::isfinite(now.cpuPercent)) {
        bucket.cpuSeconds += dt * now.cpuPercent / 100;
        bucket.peakCPUPercent = std::max(bucket.peakCPUPercent, now.cpuPercent);
    }
    bucket.memoryByteSeconds += dt * static_cast<double>(now.memoryUsed);
    bucket.peakMemoryBytes = std::max(bucket.peakMemoryBytes, byteCount(now.memoryUsed));
    bucket.peakSwapBytes = std::max(bucket.peakSwapBytes, byteCount(now.swapUsed));
    addBytes(bucket.diskReadBytes, counterGrowth(before.diskRead, now.diskRead));
    addBytes(bucket.diskWriteBytes, counterGrowth(before.diskWrite, now.diskWrite));
    addBytes(bucket.networkInBytes, counterGrowth(before.networkIn, now.networkIn));
    addBytes(bucket.networkOutBytes, counterGrowth(before.networkOut, now.networkOut));
    if (now.watts && std::isfinite(*now.watts) && *now.watts > 0) {
        bucket.energyJoules += dt * *now.watts;
        bucket.powerSeconds += dt;
    }
}

} // namespace

void MetricsAccumulator::add(const MetricsSample& sample) {
    if (lastSample_)
        if (const auto dt = observedSeconds(lastSample_->time, sample.time))
            integrate(batch_.system[roundedDown(unixSeconds(sample.time), minuteSeconds)], *lastSample_,
                      sample, *dt);
    lastSample_ = sample;
}

void MetricsAccumulator::addUnnamed(WallTime at, std::span<const AppActivity> apps) {
    const auto dt = lastProcessList_ ? observedSeconds(*lastProcessList_, at) : std::nullopt;
    lastProcessList_ = at;
    if (!dt || apps.empty()) return;

    auto& hour = batch_.apps[roundedDown(unixSeconds(at), hourSeconds)];
    for (const auto& activity : apps) bucketFor(hour, activity.app).add(activity, *dt);
}

void MetricsAccumulator::addUnnamed(std::span<const AppTraffic> traffic, WallTime from, WallTime to) {
    if (!observedSeconds(from, to) || traffic.empty()) return;
    auto& hour = batch_.apps[roundedDown(unixSeconds(to), hourSeconds)];
    for (const auto& growth : traffic) {
        auto& bucket = bucketFor(hour, growth.app);
        addBytes(bucket.networkInBytes, growth.received);
        addBytes(bucket.networkOutBytes, growth.sent);
    }
}

AppMetrics& MetricsAccumulator::bucketFor(MetricsBatch::Apps& hour, std::string_view app) {
    auto found = hour.lower_bound(app);
    if (found != hour.end() && found->first == app) return found->second;
    found = hour.emplace_hint(found, app, AppMetrics());
    const auto name = names_.find(app);
    if (name != names_.end())
        found->second.name = name->second;
    else
        unnamedApps_.emplace(app);
    return found->second;
}

void MetricsAccumulator::name(const Names& names) {
    for (const auto& [app, name] : names) {
        names_[app] = name;
        unnamedApps_.erase(app);
        for (auto& [hour, apps] : batch_.apps)
            if (const auto found = apps.find(app); found != apps.end()) found->second.name = name;
    }
}

MetricsBatch MetricsAccumulator::drain() {
    if (names_.size() > mostNames) names_.clear(); // those still in use are asked for again
    return std::exchange(batch_, {});
}

void MetricsAccumulator::forgetReferences() {
    lastSample_.reset();
    lastProcessList_.reset();
}

} // namespace quarn
