#include "history/HistorySample.h"

#include <algorithm>
#include <cmath>

namespace quarn {

namespace {

std::optional<double> ifPositive(double value) { return value > 0 ? std::optional(value) : std::nullopt; }
double orNotKnown(bool known, double value) { return known ? value : HistorySample::notKnown; }
double unlessNegative(double value) { return orNotKnown(value >= 0, value); }

std::optional<double> hottest(const SharedList<Sensor>& temperatures) {
    std::optional<double> result;
    for (const Sensor& sensor : temperatures)
        if (std::isfinite(sensor.value)) result = std::max(result.value_or(sensor.value), sensor.value);
    return result;
}

std::vector<float> bySlot(std::span<const SensorGroups::Maximum> maxima, SensorNaming naming) {
    std::vector<float> result;
    if (maxima.empty()) return result;
    for (const auto& slot : SensorGroups::slotNames(naming)) {
        const auto found = std::find_if(maxima.begin(), maxima.end(),
                                        [&](const auto& maximum) { return maximum.prefix == slot.prefix; });
        result.push_back(
            static_cast<float>(found == maxima.end() ? HistorySample::notKnown : found->celsius));
    }
    return result;
}

std::optional<double> wattsOf(const Battery& battery) {
    if (!battery.present || battery.voltage_mV <= 0 || battery.amperage_mA == 0) return {};
    return static_cast<double>(battery.voltage_mV) * static_cast<double>(battery.amperage_mA) / 1e6;
}

/// `nameAndRate` tells those of a device. A name that stands where it stood in `previous` is shared with it.
template <class Device, class NameAndRate>
DeviceRates ratesOf(const SharedList<Device>& devices, const DeviceRates* previous,
                    const NameAndRate& nameAndRate) {
    std::vector<std::pair<Text, DeviceRate>> rates;
    rates.reserve(devices.size());
    for (const Device& device : devices) {
        const auto& [name, rate] = nameAndRate(device);
        const size_t at = rates.size();
        const bool same = previous && at < previous->size() && (*previous)[at].first == name;
        rates.emplace_back(same ? (*previous)[at].first : Text(name), rate);
    }
    return rates;
}

auto diskRate(const DiskDevice& disk) {
    return std::pair(std::string_view(disk.bsd), DeviceRate{disk.readRate, disk.writeRate});
}

auto interfaceRate(const NetInterface& interface) {
    return std::pair(std::string_view(interface.name), DeviceRate{interface.rxRate, interface.txRate});
}

} // namespace

HistorySample::HistorySample(const Snapshot& snapshot, SharedList<HistoryProc> top_,
                             std::span<const SensorGroups::Maximum> maxima, const HistorySample* previous)
    : time(snapshot.timestamp),
      generation(snapshot.generation),
      memUsed(snapshot.mem.used),
      processCount(static_cast<int64_t>(snapshot.processes.size())),
      top(std::move(top_)),
      memSwap(snapshot.mem.swapUsed),
      sysWatts(ifPositive(snapshot.power.sysWatts)),
      cpuWatts(ifPositive(snapshot.power.cpuWatts)),
      hotspotC(hottest(snapshot.temps)),
      threads(snapshot.totalThreads),
      sensorGroupMax(
          bySlot(maxima, snapshot.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel)),
      npuWatts(ifPositive(snapshot.power.aneWatts)),
      gpuMemUsed(orNotKnown(snapshot.gpu.memAlloc > 0, static_cast<double>(snapshot.gpu.memUsed))),
      encoderWatts(ifPositive(snapshot.power.encoderWatts).value_or(notKnown)),
      decoderWatts(ifPositive(snapshot.power.decoderWatts).value_or(notKnown)),
      gpuRenderer(unlessNegative(snapshot.gpu.renderer)),
      gpuTiler(unlessNegative(snapshot.gpu.tiler)),
      disksGeneration(snapshot.disksGeneration),
      interfacesGeneration(snapshot.interfacesGeneration) {
    if (snapshot.gpu.device >= 0) gpuUtil = snapshot.gpu.device;
    if (snapshot.battery && snapshot.battery->present) {
        if (snapshot.battery->percent >= 0) batteryPercent = snapshot.battery->percent;
        batteryWatts = wattsOf(*snapshot.battery);
    }
    const bool sameDisks = previous && previous->disksGeneration == disksGeneration;
    const bool sameInterfaces = previous && previous->interfacesGeneration == interfacesGeneration;
    diskRates = sameDisks ? previous->diskRates
                          : ratesOf(snapshot.disks, previous ? &previous->diskRates : nullptr, diskRate);
    interfaceRates = sameInterfaces ? previous->interfaceRates
                                    : ratesOf(snapshot.interfaces,
                                              previous ? &previous->interfaceRates : nullptr, interfaceRate);

    if (snapshot.generation <= 1) return; // the first sample of a run has no rates and no shares of time
    if (!snapshot.cpu.perCore.empty()) {
        cpuTotal = snapshot.cpu.total;
        cpuSystem = snapshot.cpu.system;
        cpuUser = snapshot.cpu.user;
        perCore = snapshot.cpu.perCore;
        perCoreSystem = snapshot.cpu.perCoreSystem;
    }
    netRx = snapshot.net.rxRate;
    netTx = snapshot.net.txRate;
    pageIn = snapshot.rates.pageIn;
    pageOut = snapshot.rates.pageOut;
    if (snapshot.disk.diskCount == 0) return;
    diskRead = snapshot.disk.readRate;
    diskWrite = snapshot.disk.writeRate;
    diskActive = snapshot.disk.activeFraction;
}

const HistoryProc* busiest(const HistorySample& sample) {
    const HistoryProc* result = nullptr;
    for (const HistoryProc& process : sample.top)
        if (!result || process.cpu > result->cpu) result = &process;
    return result;
}

} // namespace quarn
