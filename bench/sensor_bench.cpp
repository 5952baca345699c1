// One sweep over all sensors of the largest captured machine at hand, and what its readings cost alone.
// QUARN_CAPTURES may name a folder with further captures.
#include "core/SMCSensors.h"
#include "core/linux/Files.h"
#include "core/linux/SensorConnection.h"

#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace {

using namespace sysinfo;

SystemRoot machine() {
    const char* captures = std::getenv("QUARN_CAPTURES");
    const std::string server = std::string(captures ? captures : "") + "/pcp-xeon40";
    if (captures && std::filesystem::exists(server)) return SystemRoot(server);
    return SystemRoot(QUARN_FIXTURES "/sensors/graphics-cards");
}

/// Sensors whose clock runs a second on with each sweep, so that every sweep reads anew.
struct Sensors {
    Sensors() {
        auto io = platform::SensorIo::forRoot(machine());
        io.nowNs = [clock = now] { return clock->load(); };
        smc = std::make_unique<SMC>(std::make_unique<platform::SensorConnection>(machine(), std::move(io)));
        readings = std::make_unique<SMCSensors>(*smc);
    }

    int sweep() {
        *now += 1'000'000'000;
        int count = readings->temps(out.data(), static_cast<int>(out.size()));
        for (const char kind : {'P', 'V', 'I', 'F'})
            count += readings->keys(kind, out.data(), static_cast<int>(out.size()));
        return count;
    }

    std::shared_ptr<std::atomic<uint64_t>> now = std::make_shared<std::atomic<uint64_t>>(1'000'000'000);
    std::unique_ptr<SMC> smc;
    std::unique_ptr<SMCSensors> readings;
    std::vector<SCSensor> out = std::vector<SCSensor>(1024);
};

void oneSweep(benchmark::State& state) {
    Sensors sensors;
    int count = sensors.sweep();
    for (auto _ : state) count = sensors.sweep();
    state.counters["sensors"] = count;
}
BENCHMARK(oneSweep)->Unit(benchmark::kMicrosecond)->UseRealTime();

void firstSweep(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Sensors().sweep());
}
BENCHMARK(firstSweep)->Unit(benchmark::kMicrosecond)->UseRealTime();

std::vector<std::string> inputs() {
    std::vector<std::string> paths;
    const std::string chips = machine().path("sys/class/hwmon");
    for (const auto& chip : platform::listFolder(chips)) {
        for (const auto& name : platform::listFolder(chips + '/' + chip)) {
            if (name.ends_with("_input")) paths.push_back(chips + '/' + chip + '/' + name);
        }
    }
    return paths;
}

void openedEachTime(benchmark::State& state) {
    const auto paths = inputs();
    for (auto _ : state) {
        for (const auto& path : paths) benchmark::DoNotOptimize(platform::readNumber(path));
    }
    state.counters["inputs"] = static_cast<double>(paths.size());
}
BENCHMARK(openedEachTime)->Unit(benchmark::kMicrosecond);

void keptOpen(benchmark::State& state) {
    const auto io = platform::SensorIo::forRoot(machine());
    std::vector<platform::KeptAttribute> attributes;
    for (auto& path : inputs()) attributes.push_back({path, {}});
    for (auto _ : state) {
        for (auto& attribute : attributes) benchmark::DoNotOptimize(platform::readInteger(io, attribute));
    }
    state.counters["inputs"] = static_cast<double>(attributes.size());
}
BENCHMARK(keptOpen)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
