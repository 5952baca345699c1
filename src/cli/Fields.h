#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"

#include <optional>
#include <string_view>

/// The fields of every record that leaves the program, each named once: JSON, and any other form with names,
/// is written by walking them. What is not known is handed over as nullopt, never as a zero.
namespace quarn::cli {

/// `value` if it is known.
template <class T>
std::optional<T> when(bool known, T value) {
    return known ? std::optional<T>(value) : std::nullopt;
}
inline std::optional<std::string_view> unlessEmpty(std::string_view text) {
    return when(!text.empty(), text);
}
template <class T>
std::optional<T> ifPositive(T value) {
    return when(value > 0, value);
}
template <class T>
std::optional<T> unlessNegative(T value) {
    return when(value >= 0, value);
}

/// A record's specialisation calls `visit(name, value)` for each field, in the order of its declaration.
template <class T>
struct Fields;

template <>
struct Fields<CpuStats> {
    template <class Visit>
    static void each(const CpuStats& cpu, const Known& known, Visit&& visit) {
        visit("total", when(known.cpu, cpu.total));
        visit("user", when(known.cpu, cpu.user));
        visit("system", when(known.cpu, cpu.system));
        visit("idle", when(known.cpu, cpu.idle));
        visit("perCore", when(known.cpu, &cpu.perCore));
        visit("perCoreSystem", when(known.cpu, &cpu.perCoreSystem));
    }
};

template <>
struct Fields<SCPower> {
    template <class Visit>
    static void each(const SCPower& power, const Known&, Visit&& visit) {
        visit("sysWatts", ifPositive(power.sysWatts));
        visit("cpuWatts", ifPositive(power.cpuWatts));
        visit("gpuWatts", ifPositive(power.gpuWatts));
        visit("aneWatts", ifPositive(power.aneWatts));
        visit("dramWatts", ifPositive(power.dramWatts));
        visit("encoderWatts", ifPositive(power.encoderWatts));
        visit("decoderWatts", ifPositive(power.decoderWatts));
        visit("ispWatts", ifPositive(power.ispWatts));
        visit("displayWatts", ifPositive(power.displayWatts));
        visit("available", power.available);
    }
};

template <>
struct Fields<HelperPower> {
    template <class Visit>
    static void each(const HelperPower& power, const Known&, Visit&& visit) {
        visit("sampledAt", power.sampledAt);
        visit("sysWatts", ifPositive(power.sysWatts));
        visit("cpuWatts", ifPositive(power.cpuWatts));
        visit("gpuWatts", ifPositive(power.gpuWatts));
        visit("aneWatts", ifPositive(power.aneWatts));
        visit("dramWatts", ifPositive(power.dramWatts));
        visit("available", power.available);
        visit("eFreqMHz", ifPositive(power.eFreqMHz));
        visit("pFreqMHz", ifPositive(power.pFreqMHz));
        visit("gpuFreqMHz", ifPositive(power.gpuFreqMHz));
        visit("combinedWatts", ifPositive(power.combinedWatts));
        visit("source", unlessEmpty(power.source));
    }
};

template <>
struct Fields<Sensor> {
    template <class Visit>
    static void each(const Sensor& sensor, const Known&, Visit&& visit) {
        visit("name", std::string_view(sensor.name));
        visit("value", sensor.value);
    }
};

template <>
struct Fields<SCMem> {
    template <class Visit>
    static void each(const SCMem& mem, const Known& known, Visit&& visit) {
        const bool parts = known.memoryParts;
        const auto& kept = known.capabilities;
        visit("total", when(known.memory, mem.total));
        visit("used", when(parts, mem.used));
        visit("app", when(parts, mem.app));
        visit("wired", when(parts, mem.wired));
        visit("compressed", when(parts, mem.compressed));
        visit("cached", when(parts, mem.cached));
        visit("freeBytes", when(parts, mem.freeBytes));
        visit("swapUsed", when(known.memory, mem.swapUsed));
        visit("swapTotal", when(known.memory, mem.swapTotal));
        visit("pageSize", ifPositive(mem.pageSize));
        visit("pageIns", when(parts, mem.pageIns));
        visit("pageOuts", when(parts, mem.pageOuts));
        visit("active", when(parts, mem.active));
        visit("inactive", when(parts, mem.inactive));
        visit("speculative", when(parts && kept.speculative, mem.speculative));
        visit("purgeable", when(parts, mem.purgeable));
        visit("external", when(parts, mem.external));
        visit("freeCount", when(parts, mem.freeCount));
        visit("faults", when(parts, mem.faults));
        visit("cowFaults", when(parts && kept.cowFaults, mem.cowFaults));
        visit("lookups", when(parts && kept.objectCache, mem.lookups));
        visit("hits", when(parts && kept.objectCache, mem.hits));
        visit("compressions", when(parts, mem.compressions));
        visit("decompressions", when(parts, mem.decompressions));
        visit("swapIns", when(parts, mem.swapIns));
        visit("swapOuts", when(parts, mem.swapOuts));
        visit("swapFree", when(known.memory, mem.swapFree));
        visit("pressureLevel", when(known.memory, mem.pressureLevel));
        visit("freePercent", when(known.memory, mem.freePercent));
    }
};

template <>
struct Fields<SCDisk> {
    template <class Visit>
    static void each(const SCDisk& disk, const Known& known, Visit&& visit) {
        const bool rates = known.disk && known.rates;
        visit("readBytes", when(known.disk, disk.readBytes));
        visit("writeBytes", when(known.disk, disk.writeBytes));
        visit("readOps", when(known.disk, disk.readOps));
        visit("writeOps", when(known.disk, disk.writeOps));
        visit("readRate", when(rates, disk.readRate));
        visit("writeRate", when(rates, disk.writeRate));
        visit("readOpsRate", when(rates, disk.readOpsRate));
        visit("writeOpsRate", when(rates, disk.writeOpsRate));
        visit("readTimeNs", when(known.disk, disk.readTimeNs));
        visit("writeTimeNs", when(known.disk, disk.writeTimeNs));
        visit("activeFraction", when(rates, disk.activeFraction));
        visit("avgResponseMs", when(rates, disk.avgResponseMs));
        visit("capacityBytes", when(known.disk, disk.capacityBytes));
        visit("diskCount", disk.diskCount);
    }
};

template <>
struct Fields<DiskDevice> {
    template <class Visit>
    static void each(const DiskDevice& disk, const Known& known, Visit&& visit) {
        visit("bsd", std::string_view(disk.bsd));
        visit("name", unlessEmpty(disk.name));
        visit("interconnect", unlessEmpty(disk.interconnect));
        visit("medium", unlessEmpty(disk.medium));
        visit("architecture", unlessEmpty(disk.architecture));
        visit("link", unlessEmpty(disk.link));
        visit("size", ifPositive(disk.size));
        visit("isInternal", disk.isInternal);
        visit("removable", disk.removable);
        visit("readRate", when(known.rates, disk.readRate));
        visit("writeRate", when(known.rates, disk.writeRate));
        visit("readBytes", disk.readBytes);
        visit("writeBytes", disk.writeBytes);
    }
};

template <>
struct Fields<Volume> {
    template <class Visit>
    static void each(const Volume& volume, const Known&, Visit&& visit) {
        const bool sized = volume.total > 0;
        visit("mount", std::string_view(volume.mount));
        visit("device", unlessEmpty(volume.device));
        visit("fs", unlessEmpty(volume.fs));
        visit("total", when(sized, volume.total));
        visit("free", when(sized, volume.free));
        visit("used", when(sized, volume.used));
        visit("local", volume.local);
    }
};

template <>
struct Fields<NetInterface> {
    template <class Visit>
    static void each(const NetInterface& link, const Known& known, Visit&& visit) {
        visit("name", std::string_view(link.name));
        visit("mac", unlessEmpty(link.mac));
        visit("addrs", unlessEmpty(link.addrs));
        visit("up", link.up);
        visit("rxBytes", link.rxBytes);
        visit("txBytes", link.txBytes);
        visit("rxPackets", link.rxPackets);
        visit("txPackets", link.txPackets);
        visit("rxErrors", link.rxErrors);
        visit("txErrors", link.txErrors);
        visit("drops", link.drops);
        visit("collisions", link.collisions);
        visit("mtu", ifPositive(link.mtu));
        visit("linkSpeedMbps", ifPositive(link.linkSpeedMbps));
        visit("media", unlessEmpty(link.media));
        visit("netmask", unlessEmpty(link.netmask));
        visit("broadcast", unlessEmpty(link.broadcast));
        visit("loopback", link.loopback);
        visit("pointToPoint", link.pointToPoint);
        visit("multicast", link.multicast);
        visit("rxRate", when(known.rates, link.rxRate));
        visit("txRate", when(known.rates, link.txRate));
    }
};

template <>
struct Fields<SystemRates> {
    template <class Visit>
    static void each(const SystemRates& rates, const Known& known, Visit&& visit) {
        const bool memory = known.rates && known.memoryParts;
        visit("pageIn", when(memory, rates.pageIn));
        visit("pageOut", when(memory, rates.pageOut));
        visit("swapIn", when(memory, rates.swapIn));
        visit("swapOut", when(memory, rates.swapOut));
        visit("faults", when(memory, rates.faults));
        visit("cowFaults", when(memory && known.capabilities.cowFaults, rates.cowFaults));
        visit("compressions", when(memory, rates.compressions));
        visit("decompressions", when(memory, rates.decompressions));
        visit("contextSwitches", when(known.processRates, rates.contextSwitches));
        visit("cacheHitRatio", rates.cacheHitRatio);
    }
};

template <>
struct Fields<SCNet> {
    template <class Visit>
    static void each(const SCNet& net, const Known& known, Visit&& visit) {
        const bool rates = known.network && known.rates;
        visit("rxBytes", when(known.network, net.rxBytes));
        visit("txBytes", when(known.network, net.txBytes));
        visit("rxPackets", when(known.network, net.rxPackets));
        visit("txPackets", when(known.network, net.txPackets));
        visit("rxRate", when(rates, net.rxRate));
        visit("txRate", when(rates, net.txRate));
        visit("rxPacketRate", when(rates, net.rxPacketRate));
        visit("txPacketRate", when(rates, net.txPacketRate));
    }
};

template <>
struct Fields<SCGpuStats> {
    template <class Visit>
    static void each(const SCGpuStats& gpu, const Known&, Visit&& visit) {
        visit("device", unlessNegative(gpu.device));
        visit("renderer", unlessNegative(gpu.renderer));
        visit("tiler", unlessNegative(gpu.tiler));
        visit("memUsed", when(gpu.device >= 0 || gpu.memUsed > 0, gpu.memUsed));
        visit("memAlloc", when(gpu.device >= 0 || gpu.memAlloc > 0, gpu.memAlloc));
    }
};

template <>
struct Fields<Battery> {
    template <class Visit>
    static void each(const Battery& battery, const Known&, Visit&& visit) {
        visit("present", battery.present);
        visit("charging", battery.charging);
        visit("onAC", battery.onAC);
        visit("percent", unlessNegative(battery.percent));
        visit("timeToEmptyMin", unlessNegative(battery.timeToEmptyMin));
        visit("timeToFullMin", unlessNegative(battery.timeToFullMin));
        visit("cycleCount", unlessNegative(battery.cycleCount));
        visit("designCapacity", unlessNegative(battery.designCapacity));
        visit("nominalCapacity", unlessNegative(battery.nominalCapacity));
        visit("voltage_mV", ifPositive(battery.voltage_mV));
        visit("amperage_mA", when(battery.voltage_mV > 0 || battery.amperage_mA != 0, battery.amperage_mA));
        visit("temperatureC", when(battery.temperatureC != 0, battery.temperatureC)); // 0 is "not measured"
        visit("health", unlessEmpty(battery.health));
    }
};

template <>
struct Fields<ProcInfo> {
    template <class Visit>
    static void each(const ProcInfo& process, const Known& known, Visit&& visit) {
        const bool measured = process.accessible;
        const bool rates = measured && known.processRates;
        const bool io = measured && process.ioKnown;
        visit("pid", process.pid);
        visit("ppid", process.ppid);
        visit("uid", process.uid);
        visit("name", process.name.view());
        visit("user", unlessEmpty(process.user));
        visit("state", when(process.state != "—", process.state.view()));
        visit("path", unlessEmpty(process.path));
        visit("cpuPercent", when(rates, process.cpuPercent));
        visit("memBytes", when(measured, process.memBytes));
        visit("threads", when(measured, process.threads));
        visit("cpuTimeNs", when(measured, process.cpuTimeNs));
        visit("startTime", process.startTime);
        visit("startTimeMicros", process.startTimeMicros);
        visit("accessible", process.accessible);
        visit("diskRead", when(io, process.diskRead));
        visit("diskWrite", when(io, process.diskWrite));
        visit("diskReadRate", when(io && rates, process.diskReadRate));
        visit("diskWriteRate", when(io && rates, process.diskWriteRate));
        visit("contextSwitches", when(measured, process.contextSwitches));
        visit("cswRate", when(rates, process.cswRate));
        visit("energyNj", process.energyNj);
        visit("watts", process.watts);
        visit("ioKnown", process.ioKnown);
    }
};

template <>
struct Fields<Snapshot> {
    template <class Visit>
    static void each(const Snapshot& snapshot, const Known& known, Visit&& visit) {
        visit("cpu", snapshot.cpu);
        visit("power", snapshot.power);
        visit("powerStale", snapshot.powerStale);
        visit("powerSource", unlessEmpty(snapshot.powerSource));
        visit("freq", snapshot.freq);
        visit("dcInWatts", snapshot.dcInWatts);
        visit("temps", snapshot.temps);
        visit("powerKeys", snapshot.powerKeys);
        visit("voltageKeys", snapshot.voltageKeys);
        visit("currentKeys", snapshot.currentKeys);
        visit("fanKeys", snapshot.fanKeys);
        visit("mem", snapshot.mem);
        visit("disk", snapshot.disk);
        visit("disks", snapshot.disks);
        visit("disksGeneration", snapshot.disksGeneration);
        visit("interfaces", snapshot.interfaces);
        visit("interfacesGeneration", snapshot.interfacesGeneration);
        visit("rates", snapshot.rates);
        visit("net", snapshot.net);
        visit("gpu", snapshot.gpu);
        visit("battery", snapshot.battery);
        visit("processes", snapshot.processes);
        visit("totalThreads", ifPositive(snapshot.totalThreads));
        visit("loadAvg", snapshot.loadAvg);
        visit("uptime", when(known.uptime, snapshot.uptime));
        visit("generation", snapshot.generation);
        visit("processGeneration", snapshot.processGeneration);
        visit("timestamp", snapshot.timestamp);
        visit("thermalState", when(snapshot.thermalState != ThermalState::unknown, snapshot.thermalState));
        visit("isAppleSilicon", snapshot.isAppleSilicon);
    }
};

} // namespace quarn::cli
