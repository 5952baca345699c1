// Commands that describe the machine, its battery and its GPUs.
#include "cli/Command.h"
#include "cli/FactList.h"
#include "cli/HardwareFields.h"
#include "cli/Json.h"
#include "cli/Output.h"
#include "core/NeuralEngine.h"
#include "monitor/HardwareConversion.h"
#include "ui/modules/Facts.h"
#include "ui/modules/Format.h"

#include <fmt/format.h>
#include <thread>

namespace quarn::cli {
namespace {

template <class T>
int printJson(const T& value) {
    JsonWriter json;
    writeJson(json, value, {});
    json.newline();
    writeOut(json.text());
    return 0;
}

std::string countOrNothing(int64_t count) { return count > 0 ? fmt::format("{}", count) : std::string(); }

// ---- Battery

std::string describeBattery(const sysinfo::BatteryInfo& battery, Charset charset) {
    const Battery record = toBattery(battery).value();
    FactList facts(charset);
    facts.heading(battery.count > 1 ? fmt::format("{} batteries", battery.count) : "Battery");
    facts.add("Model", battery.model);
    facts.add("Charge", battery.percentKnown ? fmt::format("{} %", battery.percent) : "");
    facts.add("State", batteryState(record));
    facts.add("Power", battery.watts ? format::watts(std::abs(*battery.watts)) : "");
    facts.add("Voltage", battery.voltage_mV > 0 ? fmt::format("{:.2f} V", battery.voltage_mV / 1000.0) : "");
    const bool currentKnown = battery.watts || battery.amperage_mA != 0;
    facts.add("Current", currentKnown ? fmt::format("{} mA", battery.amperage_mA) : "");
    facts.add("Capacity when full", batteryCapacity(record));
    facts.add("Cycles", countOrNothing(battery.cycleCount), "the battery does not count them");
    facts.add("Temperature", battery.temperatureC > 0 ? fmt::format("{:.1f} °C", battery.temperatureC) : "");
    facts.add("Condition", battery.health);
    return facts.text();
}

// ---- GPU

std::string shareText(const std::optional<double>& percent) {
    return percent ? format::percent(*percent) : std::string();
}

std::string gpuMemoryText(const sysinfo::GpuReading& gpu) {
    if (!gpu.memUsed) return {};
    if (!gpu.memAlloc || *gpu.memAlloc == 0) return format::memory(*gpu.memUsed);
    return format::memory(*gpu.memUsed) + " of " + format::memory(*gpu.memAlloc);
}

void addGpu(const sysinfo::GpuReading& gpu, FactList& facts) {
    const std::string asleep = gpu.asleep ? "asleep" : "";
    facts.heading(gpu.device.name.empty() ? "Unknown GPU" : gpu.device.name);
    facts.add("Driver", gpu.device.driver, "none is bound");
    if (!gpu.device.slot.empty()) facts.add("Bus address", gpu.device.slot);
    if (gpu.device.cores > 0) facts.add("Compute units", countOrNothing(gpu.device.cores));
    std::string busy = gpu.asleep ? "asleep" : shareText(gpu.busy);
    if (!busy.empty() && gpu.ownProcessesOnly) busy += "  (your own processes only; run as root for all)";
    facts.add("Busy", busy, "the driver does not tell");
    if (gpu.renderer) facts.add("Drawing", shareText(gpu.renderer));
    if (gpu.tiler) facts.add("Geometry", shareText(gpu.tiler));
    facts.add("Memory", gpuMemoryText(gpu), asleep);
    facts.add("Power", gpu.watts ? format::watts(*gpu.watts) : "", asleep);
}

// ---- Hardware

std::string describeHardware(const Hardware& hardware, Charset charset) {
    FactList facts(charset);
    for (const FactGroup& group : hardwareFacts(hardware)) {
        facts.heading(group.title);
        for (const Fact& fact : group.facts) facts.add(fact.name, fact.value, fact.reason);
    }
    return facts.text();
}

} // namespace

int runBattery(const Options& options) {
    const auto battery = sysinfo::readBattery(options.root);
    if (options.form == Options::Form::json) return printJson(toBattery(battery));
    writeOut(battery.present ? describeBattery(battery, charsetOfEnvironment())
                             : "This machine has no battery.\n");
    return 0;
}

int runGpu(const Options& options) {
    sysinfo::GpuSampler sampler(options.root);
    if (!sampler.sample().empty())
        std::this_thread::sleep_for(std::chrono::duration<double>(options.interval));
    const auto& gpus = sampler.sample();
    if (options.form == Options::Form::json) return printJson(gpus);
    FactList facts(charsetOfEnvironment());
    for (const sysinfo::GpuReading& gpu : gpus) addGpu(gpu, facts);
    writeOut(gpus.empty() ? "No GPU was found.\n" : facts.text());
    return 0;
}

int runHardware(const Options& options) {
    const Hardware hardware =
        toHardware(sysinfo::readHardwareInfo(options.root), sysinfo::readBattery(options.root),
                   sysinfo::platform::findNeuralEngine(options.root));
    if (options.form == Options::Form::json) return printJson(hardware);
    writeOut(describeHardware(hardware, charsetOfEnvironment()));
    return 0;
}

} // namespace quarn::cli
