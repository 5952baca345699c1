#include "ui/modules/WidgetKind.h"

#include "monitor/SensorGroups.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr std::array<std::string_view, allWidgetKinds.size()> ids{"cpu",     "memory", "gpu",  "temperature",
                                                                  "network", "disk",   "power"};
constexpr std::array<std::string_view, allWidgetKinds.size()> titles{
    "CPU", "Memory", "GPU", "Temperature", "Network", "Disk", "Power"};

double memoryPercent(const SCMem& mem) {
    return mem.total == 0 ? 0 : static_cast<double>(mem.used) * 100 / static_cast<double>(mem.total);
}

/// "12.3 MB/s"; one decimal at any size, so that the text of a status item keeps its width.
std::string diskRate(double bytesPerSecond) {
    constexpr std::array<std::string_view, 5> units{"B", "kB", "MB", "GB", "TB"};
    if (!(bytesPerSecond >= 0)) return std::string(format::unknown);
    size_t unit = 0;
    for (; bytesPerSecond >= 999.95 && unit + 1 < units.size(); ++unit) bytesPerSecond /= 1000;
    return fmt::format("{:.1f} {}/s", bytesPerSecond, units[unit]);
}

/// Left-padded to `width` characters; characters are counted, not bytes.
std::string padded(std::string text, size_t width) {
    const auto isStart = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const auto length = static_cast<size_t>(std::count_if(text.begin(), text.end(), isStart));
    return length < width ? std::string(width - length, ' ') + text : text;
}

/// "0", "34k", ".7M", "8M", "12M": a rate in at most three characters.
std::string shortRate(double perSecond) {
    constexpr std::array<std::string_view, 4> units{"k", "M", "G", "T"};
    if (perSecond < 50) return "0";
    size_t unit = 0;
    for (perSecond /= 1000; perSecond >= 99.5 && unit + 1 < units.size(); ++unit) perSecond /= 1000;
    if (perSecond < 0.95) return fmt::format(".{:.0f}{}", perSecond * 10, units[unit]);
    return fmt::format("{:.0f}{}", perSecond, units[unit]);
}

/// The part of the machine that the representative temperature is of.
std::string_view hottestPart(const Snapshot& snapshot) {
    const auto naming = snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel;
    const auto maxima = SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()}, naming);
    for (const auto& slot : SensorGroups::slotNames(naming))
        if (!maxima.empty() && slot.prefix == maxima.front().prefix) return slot.name;
    return "hottest sensor";
}

} // namespace

std::string_view widgetKindId(WidgetKind kind) { return ids[static_cast<size_t>(kind)]; }

std::optional<WidgetKind> widgetKindFromId(std::string_view id) {
    const auto found = std::find(ids.begin(), ids.end(), id);
    if (found == ids.end()) return {};
    return static_cast<WidgetKind>(found - ids.begin());
}

std::string Reading::title(WidgetKind kind) { return std::string(titles[static_cast<size_t>(kind)]); }

std::string Reading::headline(WidgetKind kind) const {
    std::string dash(format::unknown);
    switch (kind) {
    case WidgetKind::cpu: return known.cpu ? fmt::format("{:.0f} %", snapshot.cpu.total) : dash;
    case WidgetKind::memory:
        return known.memoryParts ? fmt::format("{:.0f} %", memoryPercent(snapshot.mem)) : dash;
    case WidgetKind::gpu:
        return snapshot.gpu.device >= 0 ? fmt::format("{:.0f} %", snapshot.gpu.device) : dash;
    case WidgetKind::temperature: return temperature ? temperatureText(*temperature, style) : dash;
    case WidgetKind::network:
        return known.network && known.rates
                   ? networkRateText(snapshot.net.rxRate + snapshot.net.txRate, style)
                   : dash;
    case WidgetKind::disk:
        return known.disk && known.rates ? format::rate(snapshot.disk.readRate + snapshot.disk.writeRate)
                                         : dash;
    case WidgetKind::power:
        return snapshot.power.sysWatts > 0 ? format::watts(snapshot.power.sysWatts) : dash;
    }
    return dash;
}

std::string Reading::caption(WidgetKind kind) const {
    switch (kind) {
    case WidgetKind::cpu: {
        const size_t cores = snapshot.cpu.perCore.size();
        if (snapshot.loadAvg.empty() || cores == 0) return "not known";
        return fmt::format("load {:.2f} on {} {}", snapshot.loadAvg[0], cores, cores == 1 ? "core" : "cores");
    }
    case WidgetKind::memory:
        if (!known.memoryParts) return "not known";
        return fmt::format("{} of {}", format::memory(snapshot.mem.used), format::memory(snapshot.mem.total));
    case WidgetKind::gpu:
        if (snapshot.gpu.device < 0) return "no reading";
        return snapshot.gpu.memUsed > 0 ? format::memory(snapshot.gpu.memUsed) + " in use" : "busy";
    case WidgetKind::temperature: return temperature ? std::string(hottestPart(snapshot)) : "no sensors";
    case WidgetKind::network:
        if (!known.network || !known.rates) return "not known";
        return fmt::format("in {}, out {}", networkRateText(snapshot.net.rxRate, style),
                           networkRateText(snapshot.net.txRate, style));
    case WidgetKind::disk:
        if (!known.disk || !known.rates) return "not known";
        return fmt::format("read {}, write {}", format::rate(snapshot.disk.readRate),
                           format::rate(snapshot.disk.writeRate));
    case WidgetKind::power:
        if (snapshot.power.sysWatts > 0) return "whole machine";
        return "no reading";
    }
    return {};
}

std::vector<double> Reading::values(WidgetKind kind) const {
    switch (kind) {
    case WidgetKind::cpu: return {known.cpu ? snapshot.cpu.total : format::notKnown};
    case WidgetKind::memory: return {known.memoryParts ? memoryPercent(snapshot.mem) : format::notKnown};
    case WidgetKind::gpu: return {snapshot.gpu.device >= 0 ? snapshot.gpu.device : format::notKnown};
    case WidgetKind::temperature: return {temperature.value_or(format::notKnown)};
    case WidgetKind::network:
        if (!known.network || !known.rates) return {format::notKnown, format::notKnown};
        return {snapshot.net.rxRate, snapshot.net.txRate};
    case WidgetKind::disk:
        if (!known.disk || !known.rates) return {format::notKnown, format::notKnown};
        return {snapshot.disk.readRate, snapshot.disk.writeRate};
    case WidgetKind::power: return {snapshot.power.sysWatts > 0 ? snapshot.power.sysWatts : format::notKnown};
    }
    return {};
}

double Reading::value(WidgetKind kind) const {
    double sum = 0;
    for (const double value : values(kind)) sum += value;
    return sum;
}

std::string Reading::menuBarText(WidgetKind kind) const {
    std::string dash(format::unknown);
    const auto percent = [&](double value) { return value >= 0 ? fmt::format("{:.0f} %", value) : dash; };
    switch (kind) {
    case WidgetKind::cpu: return padded(known.cpu ? percent(snapshot.cpu.total) : dash, 5);
    case WidgetKind::memory:
        // Nothing built in is no memory used; an amount whose use cannot be read is another thing.
        return padded(
            known.memoryParts || snapshot.mem.total == 0 ? percent(memoryPercent(snapshot.mem)) : dash, 5);
    case WidgetKind::gpu: return padded(percent(snapshot.gpu.device), 5);
    case WidgetKind::temperature: return padded(temperature ? temperatureText(*temperature, style) : dash, 5);
    case WidgetKind::network: {
        const auto rates = values(kind); // NaN, which reads as "—", where they are not known
        return padded(networkRateText(rates[0], style), 9) + " " +
               padded(networkRateText(rates[1], style), 9);
    }
    case WidgetKind::disk: return padded(diskRate(value(kind)), 9);
    case WidgetKind::power:
        return padded(snapshot.power.sysWatts > 0 ? fmt::format("{:.1f} W", snapshot.power.sysWatts) : dash,
                      6);
    }
    return dash;
}

std::string Reading::shortText(WidgetKind kind) const {
    const double value = this->value(kind);
    if (std::isnan(value)) return std::string(format::unknown);
    switch (kind) {
    case WidgetKind::cpu:
    case WidgetKind::memory:
    case WidgetKind::gpu: return fmt::format("{:.0f}", value);
    case WidgetKind::temperature:
        return fmt::format("{:.0f}°", style.fahrenheit ? value * 9 / 5 + 32 : value);
    case WidgetKind::network: return shortRate(style.networkInBits ? value * 8 : value);
    case WidgetKind::disk: return shortRate(value);
    case WidgetKind::power: return fmt::format("{:.0f}W", value);
    }
    return {};
}

std::optional<double> representativeTemperature(const Snapshot& snapshot) {
    if (snapshot.temps.empty()) return {};
    const auto maxima =
        SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()},
                             snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel);
    if (!maxima.empty()) return maxima.front().celsius; // the slots begin with the processor
    const auto hottest = std::max_element(snapshot.temps.begin(), snapshot.temps.end(),
                                          [](const Sensor& a, const Sensor& b) { return a.value < b.value; });
    return hottest->value;
}

} // namespace quarn
