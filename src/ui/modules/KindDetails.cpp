#include "ui/modules/KindDetails.h"

#include "monitor/SensorGroups.h"
#include "ui/modules/Format.h"

#include <algorithm>
#include <fmt/format.h>

namespace quarn {

namespace {

/// What a process uses of a kind; not above 0 when it uses nothing or that is not known.
double use(const ProcInfo& process, WidgetKind kind, const Known& known) {
    switch (kind) {
    case WidgetKind::cpu: return known.processRates ? process.cpuPercent : 0;
    case WidgetKind::memory: return static_cast<double>(process.memBytes);
    case WidgetKind::disk:
        return known.processRates && process.ioKnown ? process.diskReadRate + process.diskWriteRate : 0;
    case WidgetKind::power: return process.watts.value_or(0);
    case WidgetKind::gpu:
    case WidgetKind::temperature:
    case WidgetKind::network: return 0;
    }
    return 0;
}

std::string useText(double use, WidgetKind kind) {
    switch (kind) {
    case WidgetKind::cpu: return format::percent(use);
    case WidgetKind::memory: return format::memory(static_cast<uint64_t>(use));
    case WidgetKind::disk: return format::rate(use);
    default: return format::watts(use);
    }
}

using Lines = std::vector<DetailLine>;

void addCpu(const Reading& reading, Lines& lines) {
    const Snapshot& snapshot = reading.snapshot;
    if (reading.known.cpu) {
        lines.push_back({"Programs", format::percent(snapshot.cpu.total - snapshot.cpu.system)});
        lines.push_back({"System", format::percent(snapshot.cpu.system)});
    }
    if (snapshot.loadAvg.size() >= 3)
        lines.push_back({"Load average", fmt::format("{:.2f}  {:.2f}  {:.2f}", snapshot.loadAvg[0],
                                                     snapshot.loadAvg[1], snapshot.loadAvg[2])});
    if (!snapshot.processes.empty())
        lines.push_back({"Processes", fmt::format("{}", snapshot.processes.size())});
    if (reading.known.uptime) lines.push_back({"Running for", format::duration(snapshot.uptime)});
}

void addMemory(const Reading& reading, Lines& lines) {
    const SCMem& mem = reading.snapshot.mem;
    if (reading.known.memoryParts) {
        lines.push_back({"Programs", format::memory(mem.app)});
        lines.push_back({"Kernel", format::memory(mem.wired)});
        lines.push_back({"Compressed", format::memory(mem.compressed)});
        lines.push_back({"Cached files", format::memory(mem.cached)});
    }
    if (reading.known.memory) lines.push_back({"Swap in use", format::memory(mem.swapUsed)});
}

void addGpu(const Reading& reading, Lines& lines) {
    const SCGpuStats& gpu = reading.snapshot.gpu;
    if (gpu.renderer >= 0) lines.push_back({"Rendering", format::percent(gpu.renderer)});
    if (gpu.tiler >= 0) lines.push_back({"Geometry", format::percent(gpu.tiler)});
    if (gpu.memUsed > 0) lines.push_back({"Memory in use", format::memory(gpu.memUsed)});
    if (gpu.memAlloc > 0) lines.push_back({"Memory set aside", format::memory(gpu.memAlloc)});
}

void addTemperatures(const Reading& reading, Lines& lines) {
    const Snapshot& snapshot = reading.snapshot;
    const auto naming = snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel;
    for (const auto& part : SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()}, naming))
        for (const auto& slot : SensorGroups::slotNames(naming))
            if (slot.prefix == part.prefix)
                lines.push_back({std::string(slot.name), temperatureText(part.celsius, reading.style)});
}

void addInterfaces(const Reading& reading, Lines& lines) {
    if (!reading.known.network || !reading.known.rates) return;
    std::vector<const NetInterface*> moving;
    for (const auto& interface : reading.snapshot.interfaces)
        if (interface.up && !interface.loopback) moving.push_back(&interface);
    const auto rate = [](const NetInterface* i) { return i->rxRate + i->txRate; };
    std::stable_sort(moving.begin(), moving.end(), [&](auto* a, auto* b) { return rate(a) > rate(b); });
    for (const auto* interface : moving)
        lines.push_back({interface->name, networkRateText(rate(interface), reading.style)});
}

void addDisks(const Reading& reading, Lines& lines) {
    if (!reading.known.disk || !reading.known.rates) return;
    for (const auto& disk : reading.snapshot.disks)
        lines.push_back(
            {disk.name.empty() ? disk.bsd : disk.name, format::rate(disk.readRate + disk.writeRate)});
}

void addPower(const Reading& reading, Lines& lines) {
    const SCPower& power = reading.snapshot.power;
    const auto add = [&](const char* name, double watts) {
        if (watts > 0) lines.push_back({name, format::watts(watts)});
    };
    add("Processors", power.cpuWatts);
    add("GPU", power.gpuWatts);
    add("Memory", power.dramWatts);
    add("Neural engine", power.aneWatts);
    add("Display", power.displayWatts);
    if (const auto& battery = reading.snapshot.battery; battery && battery->present && battery->percent >= 0)
        lines.push_back(
            {battery->charging ? "Battery, charging" : "Battery", fmt::format("{} %", battery->percent)});
}

} // namespace

std::vector<DetailLine> busiestProcesses(const Reading& reading, WidgetKind kind, size_t count) {
    struct User {
        double use;
        const ProcInfo* process;
    };
    std::vector<User> users;
    for (const ProcInfo& process : reading.snapshot.processes)
        if (const double used = use(process, kind, reading.known); used > 0)
            users.push_back({used, &process});
    count = std::min(count, users.size());
    std::partial_sort(users.begin(), users.begin() + static_cast<std::ptrdiff_t>(count), users.end(),
                      [](const User& a, const User& b) {
                          return a.use != b.use ? a.use > b.use : a.process->pid < b.process->pid;
                      });
    Lines lines;
    for (size_t i = 0; i < count; ++i)
        lines.push_back({std::string(users[i].process->name), useText(users[i].use, kind)});
    return lines;
}

std::vector<DetailLine> detailLines(const Reading& reading, WidgetKind kind, size_t count) {
    Lines lines;
    switch (kind) {
    case WidgetKind::cpu: addCpu(reading, lines); break;
    case WidgetKind::memory: addMemory(reading, lines); break;
    case WidgetKind::gpu: addGpu(reading, lines); break;
    case WidgetKind::temperature: addTemperatures(reading, lines); break;
    case WidgetKind::network: addInterfaces(reading, lines); break;
    case WidgetKind::disk: addDisks(reading, lines); break;
    case WidgetKind::power: addPower(reading, lines); break;
    }
    if (lines.size() > count) lines.resize(count);
    return lines;
}

} // namespace quarn
