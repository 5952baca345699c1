#include "ui/modules/LiveHistory.h"

#include "history/HistorySample.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <cmath>

namespace quarn {

namespace {

constexpr double pauseInTicks = 2.5;

constexpr size_t at(LiveSeries series) { return static_cast<size_t>(series); }

using Values = std::array<double, at(LiveSeries::count)>;

Values nothing() {
    Values values;
    values.fill(format::notKnown);
    return values;
}

/// As representativeTemperature has it: the processor's, or else the hottest.
double temperatureOf(const HistorySample& sample) {
    for (const float maximum : sample.sensorGroupMax)
        if (!std::isnan(maximum)) return static_cast<double>(maximum);
    return sample.hotspotC.value_or(format::notKnown);
}

Values valuesOf(const HistorySample& sample, uint64_t memoryTotal) {
    Values values = nothing();
    values[at(LiveSeries::cpuTotal)] = sample.cpuTotal;
    values[at(LiveSeries::cpuSystem)] = sample.cpuSystem;
    if (memoryTotal > 0) {
        values[at(LiveSeries::memoryUsed)] =
            static_cast<double>(sample.memUsed) * 100 / static_cast<double>(memoryTotal);
        values[at(LiveSeries::swapUsed)] = static_cast<double>(sample.memSwap);
    }
    values[at(LiveSeries::gpu)] = sample.gpuUtil.value_or(format::notKnown);
    values[at(LiveSeries::temperature)] = temperatureOf(sample);
    values[at(LiveSeries::networkIn)] = sample.netRx;
    values[at(LiveSeries::networkOut)] = sample.netTx;
    values[at(LiveSeries::diskRead)] = sample.diskRead;
    values[at(LiveSeries::diskWrite)] = sample.diskWrite;
    values[at(LiveSeries::power)] = sample.sysWatts.value_or(format::notKnown);
    return values; // the load is not kept
}

} // namespace

void LiveHistory::add(const Snapshot& snapshot, const Known& known, double now, double tick) {
    Values values = nothing();
    if (!times_.empty() && now - times_.back() > pauseInTicks * tick) push(std::nextafter(now, 0), values);
    const auto set = [&](LiveSeries series, bool isKnown, double value) {
        if (isKnown) values[at(series)] = value;
    };
    const SCMem& mem = snapshot.mem;
    set(LiveSeries::cpuTotal, known.cpu, snapshot.cpu.total);
    set(LiveSeries::cpuSystem, known.cpu, snapshot.cpu.system);
    set(LiveSeries::memoryUsed, known.memoryParts,
        static_cast<double>(mem.used) * 100 / static_cast<double>(std::max<uint64_t>(mem.total, 1)));
    set(LiveSeries::swapUsed, known.memory, static_cast<double>(mem.swapUsed));
    set(LiveSeries::gpu, snapshot.gpu.device >= 0, snapshot.gpu.device);
    const auto temperature = representativeTemperature(snapshot);
    set(LiveSeries::temperature, temperature.has_value(), temperature.value_or(0));
    set(LiveSeries::networkIn, known.network && known.rates, snapshot.net.rxRate);
    set(LiveSeries::networkOut, known.network && known.rates, snapshot.net.txRate);
    set(LiveSeries::diskRead, known.disk && known.rates, snapshot.disk.readRate);
    set(LiveSeries::diskWrite, known.disk && known.rates, snapshot.disk.writeRate);
    set(LiveSeries::power, snapshot.power.sysWatts > 0, snapshot.power.sysWatts);
    set(LiveSeries::load, !snapshot.loadAvg.empty(), snapshot.loadAvg.empty() ? 0 : snapshot.loadAvg[0]);
    push(now, values);
    tick_ = tick;
}

void LiveHistory::restore(std::span<const std::shared_ptr<const HistorySample>> samples,
                          std::span<const std::pair<double, double>> breaks, uint64_t memoryTotal,
                          Moment now) {
    const LiveHistory own = std::exchange(*this, {});
    const double end = own.empty() ? now.steady : own.times().front();
    const auto steady = [&](double sinceEpoch) {
        return now.steady - (std::chrono::duration<double>(now.wall.time_since_epoch()).count() - sinceEpoch);
    };
    const auto isAfterLast = [&](double time) { return times_.empty() || time > times_.back(); };
    // A break ends where the samples begin again: its gap is one point before the next one.
    const auto breakWithin = [&](double from, double to) {
        return std::any_of(breaks.begin(), breaks.end(), [&](const auto& each) {
            return steady(each.first) < to && steady(each.second) > from;
        });
    };
    for (const auto& sample : samples) {
        const double time = steady(std::chrono::duration<double>(sample->time.time_since_epoch()).count());
        if (time < now.steady - longestSpan || time >= end || !isAfterLast(time)) continue;
        if (!empty() && breakWithin(times_.back(), time)) append(std::nextafter(time, 0), nothing());
        append(time, valuesOf(*sample, memoryTotal));
    }
    if (!empty() && !own.empty()) append(std::nextafter(end, 0), nothing()); // the program did not run
    for (size_t i = 0; i < own.times_.size(); ++i) {
        Values values;
        for (size_t k = 0; k < values.size(); ++k) values[k] = own.values_[k][i];
        append(own.times_[i], values);
    }
    tick_ = own.tick_;
}

void LiveHistory::append(double time, const Values& values) {
    times_.push_back(time);
    for (size_t i = 0; i < values.size(); ++i) values_[i].push_back(values[i]);
}

void LiveHistory::push(double time, const Values& values) {
    append(time, values);
    // In batches, so that a point costs no move of all others.
    if (time - times_.front() < longestSpan * 1.25) return;
    const auto first = std::lower_bound(times_.begin(), times_.end(), time - longestSpan) - times_.begin();
    times_.erase(times_.begin(), times_.begin() + first);
    for (auto& series : values_) series.erase(series.begin(), series.begin() + first);
}

std::span<const double> LiveHistory::times() const { return times_; }
std::span<const double> LiveHistory::values(LiveSeries series) const { return values_[at(series)]; }

double LiveHistory::sum(std::span<const LiveSeries> summands, size_t index) const {
    double sum = 0;
    for (const LiveSeries series : summands) sum += values(series)[index];
    return sum;
}

std::vector<double> LiveHistory::peaks(LiveSeries series, double span, size_t count) const {
    return peaks(std::span(&series, 1), span, count);
}

std::vector<double> LiveHistory::peaks(std::span<const LiveSeries> summands, double span,
                                       size_t count) const {
    std::vector<double> peaks(count, format::notKnown);
    if (times_.empty() || count == 0 || !(span > 0)) return peaks;
    const double slice = span / static_cast<double>(count);
    const double newest = std::floor(times_.back() / slice);
    for (size_t i = times_.size(); i-- > 0;) {
        const double back = newest - std::floor(times_[i] / slice);
        if (back >= static_cast<double>(count)) break;
        double& peak = peaks[count - 1 - static_cast<size_t>(back)];
        if (const double value = sum(summands, i); std::isnan(peak) || value > peak) peak = value;
    }
    return peaks;
}

size_t LiveHistory::slicesWithin(double span, size_t most) const {
    constexpr double ticksInSlice = 1.5;
    if (!(tick_ > 0) || !(span > 0)) return most;
    return static_cast<size_t>(
        std::clamp(std::floor(span / (ticksInSlice * tick_)), 1.0, static_cast<double>(most)));
}

std::span<const LiveSeries> seriesOf(WidgetKind kind) {
    static constexpr std::array all{LiveSeries::cpuTotal,    LiveSeries::memoryUsed, LiveSeries::gpu,
                                    LiveSeries::temperature, LiveSeries::networkIn,  LiveSeries::networkOut,
                                    LiveSeries::diskRead,    LiveSeries::diskWrite,  LiveSeries::power};
    const auto from = [&](size_t first, size_t count) { return std::span(all).subspan(first, count); };
    switch (kind) {
    case WidgetKind::cpu: return from(0, 1);
    case WidgetKind::memory: return from(1, 1);
    case WidgetKind::gpu: return from(2, 1);
    case WidgetKind::temperature: return from(3, 1);
    case WidgetKind::network: return from(4, 2);
    case WidgetKind::disk: return from(6, 2);
    case WidgetKind::power: return from(8, 1);
    }
    return {};
}

} // namespace quarn
