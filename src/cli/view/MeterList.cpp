#include "cli/view/MeterList.h"

#include "ui/modules/Format.h"

#include <algorithm>
#include <fmt/format.h>

namespace quarn::cli {
namespace {

using format::unknown;

// Traffic below these does not fill a mini graph.
constexpr double leastNetworkScale = 100e3;
constexpr double leastDiskScale = 1e6;

double share(uint64_t part, uint64_t whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

/// "3.21 of 7.75 GiB", the unit once where both have the same.
std::string partOf(uint64_t part, uint64_t whole) {
    std::string left = format::memory(part), right = format::memory(whole);
    const size_t blank = left.find(' ');
    if (part == 0 || left.substr(blank) == right.substr(right.find(' '))) left.resize(blank);
    return left + " of " + right;
}

std::string rateUnless(bool known, double rate) { return known ? format::rate(rate) : std::string(unknown); }

/// A rate with a word before it, right-aligned so that nothing moves when it changes.
std::string named(std::string_view name, const std::string& rate) {
    return fmt::format("{} {:>9}", name, rate);
}

Meter memoryMeter(const Snapshot& snapshot, const Known& known) {
    const SCMem& mem = snapshot.mem;
    Meter meter{.label = "Memory", .ink = Ink::memory};
    if (!known.memoryParts) {
        meter.figure = unknown;
        return meter;
    }
    meter.parts = {{share(mem.used, mem.total), Ink::memory}};
    meter.figure = format::percent(100 * share(mem.used, mem.total));
    if (mem.pressureLevel >= 4) meter.facts.push_back({"! very short", {Ink::critical, Weight::bold}});
    if (mem.pressureLevel == 2) meter.facts.push_back({"! short", {Ink::warning, Weight::bold}});
    meter.facts.push_back({partOf(mem.used, mem.total), {}});
    meter.facts.push_back({format::memory(mem.cached) + " cached"});
    return meter;
}

Meter swapMeter(const SCMem& mem) {
    const double used = share(mem.swapUsed, mem.swapTotal);
    return {.label = "Swap",
            .ink = Ink::memory,
            .parts = {{used, Ink::memory}},
            .figure = format::percent(100 * used),
            .facts = {{partOf(mem.swapUsed, mem.swapTotal), {}}}};
}

Meter networkMeter(const Snapshot& snapshot, const Known& known, const Trends* trends) {
    const bool rates = known.network && known.rates;
    return {.label = "Network",
            .ink = Ink::network,
            .trend = trends == nullptr ? nullptr : &trends->network,
            .leastScale = leastNetworkScale,
            .facts = {{named("in", rateUnless(rates, snapshot.net.rxRate)), {}},
                      {named("out", rateUnless(rates, snapshot.net.txRate)), {}}}};
}

Meter diskMeter(const Snapshot& snapshot, const Known& known, const Trends* trends) {
    const SCDisk& disk = snapshot.disk;
    Meter meter{.label = "Disk",
                .ink = Ink::disk,
                .trend = trends == nullptr ? nullptr : &trends->disk,
                .leastScale = leastDiskScale,
                .facts = {{named("read", rateUnless(known.rates, disk.readRate)), {}},
                          {named("write", rateUnless(known.rates, disk.writeRate)), {}}}};
    if (known.rates) meter.facts.push_back({format::percent(100 * disk.activeFraction) + " active"});
    return meter;
}

Meter gpuMeter(const SCGpuStats& gpu) {
    Meter meter{.label = "GPU",
                .ink = Ink::gpu,
                .parts = {{gpu.device / 100, Ink::gpu}},
                .figure = format::percent(gpu.device)};
    if (gpu.memAlloc > 0) meter.facts.push_back({partOf(gpu.memUsed, gpu.memAlloc), {}});
    return meter;
}

Meter batteryMeter(const Battery& battery) {
    const auto percent = static_cast<double>(battery.percent);
    const int64_t minutes = battery.charging ? battery.timeToFullMin : battery.timeToEmptyMin;
    Meter meter{.label = "Battery",
                .ink = Ink::power,
                .parts = {{percent / 100, Ink::power}},
                .figure = fmt::format("{} %", battery.percent),
                .facts = {{battery.charging ? "charging"
                           : battery.onAC   ? "on mains"
                                            : "discharging",
                           {}}}};
    if (minutes >= 0 && (battery.charging || !battery.onAC)) {
        meter.facts.push_back({format::duration(60.0 * static_cast<double>(minutes)) +
                               (battery.charging ? " until full" : " left")});
    }
    return meter;
}

} // namespace

Meter cpuMeter(const Snapshot& snapshot, const Known& known) {
    const CpuStats& cpu = snapshot.cpu;
    Meter meter{.label = "CPU", .ink = Ink::cpu};
    if (known.cpu) {
        meter.parts = {{cpu.user / 100, Ink::cpu}, {cpu.system / 100, Ink::cpuSystem}};
        meter.figure = format::percent(cpu.total);
    } else {
        meter.parts = {{0, Ink::cpu}};
        meter.figure = unknown;
    }
    if (snapshot.loadAvg.size() == 3) {
        const auto& load = snapshot.loadAvg;
        meter.facts.push_back({fmt::format("load {:.2f} {:.2f} {:.2f}", load[0], load[1], load[2])});
    }
    if (known.cpu) meter.facts.push_back({fmt::format("system {:>4} %", format::percentFigure(cpu.system))});
    return meter;
}

Meter cpuHistory(const Trends& trends) {
    const auto& shares = trends.cpu.values();
    Meter meter{.label = "History", .ink = Ink::cpu, .trend = &trends.cpu, .leastScale = 100};
    if (!shares.empty()) {
        meter.facts.push_back({"peak " + format::percent(*std::max_element(shares.begin(), shares.end()))});
    }
    return meter;
}

std::vector<Meter> otherMeters(const Snapshot& snapshot, const Known& known, const Trends* trends) {
    std::vector<Meter> meters{memoryMeter(snapshot, known)};
    meters.push_back(networkMeter(snapshot, known, trends));
    if (snapshot.mem.swapTotal > 0) meters.push_back(swapMeter(snapshot.mem));
    if (known.disk) meters.push_back(diskMeter(snapshot, known, trends));
    if (snapshot.gpu.device >= 0) meters.push_back(gpuMeter(snapshot.gpu));
    if (snapshot.battery && snapshot.battery->percent >= 0) meters.push_back(batteryMeter(*snapshot.battery));
    return meters;
}

} // namespace quarn::cli
