#include "core/IOReport.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace sysinfo {

IOReport::IOReport(std::unique_ptr<EnergySource> source, std::function<uint64_t()> nanoseconds,
                   std::function<double()> systemWatts)
    : source_(std::move(source)),
      nanoseconds_(std::move(nanoseconds)),
      systemWatts_(std::move(systemWatts)),
      debug_(std::getenv("SC_DEBUG") != nullptr) {
    if (!source_) return;
    auto first = source_->sample();
    if (!first) return;
    previousSample_ = std::move(*first);
    previousTime_ = nanoseconds_();
    ready_ = true;
}

SCPower IOReport::sample() {
    if (!ready_) return {};
    auto current = source_->sample();
    if (!current) return {};
    const uint64_t now = nanoseconds_();
    const double seconds = static_cast<double>(static_cast<int64_t>(now - previousTime_)) / 1e9;
    const EnergySample gained = energyBetween(previousSample_, *current);
    previousSample_ = std::move(*current);
    previousTime_ = now;
    if (seconds <= 0) return {};

    if (debug_) debug(gained, seconds);
    SCPower power = splitPower(gained, seconds);
    const double total = systemWatts_();
    power.sysWatts = std::isfinite(total) ? total : 0;
    return power;
}

void IOReport::debug(const EnergySample& gained, double seconds) const {
    for (const EnergyChannel& channel : gained)
        std::fprintf(stderr, "delta %s = %lld (%g W)\n", channel.name.c_str(),
                     static_cast<long long>(channel.energy), channelWatts(channel, seconds));
    if (!gained.empty()) return;
    std::fputs("delta has no IOReportChannels\n", stderr);
    for (const EnergyChannel& channel : previousSample_)
        std::fprintf(stderr, "  %s: %s = %lld %s\n", channel.id.c_str(), channel.name.c_str(),
                     static_cast<long long>(channel.energy), channel.unit.c_str());
}

} // namespace sysinfo
