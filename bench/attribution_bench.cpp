// What it costs to know and add up the applications of 2,000 processes, once they are known.
#include "IdleProcesses.h"
#include "core/ProcessSampler.h"
#include "monitor/AppProcessCounters.h"
#include "monitor/ProcessList.h"
#include "monitor/ResourceAppGrouper.h"

#include <benchmark/benchmark.h>

namespace {

using namespace quarn;

constexpr int processes = 2000;

/// This machine's processes, with 2,000 idle ones of 300 made-up applications among them.
struct Machine {
    bench::IdleProcesses idle{processes};
    std::vector<ProcInfo> list;
    std::shared_ptr<AppOwnerIndex> index =
        std::make_shared<AppOwnerIndex>(sysinfo::SystemRoot::host(), "de_DE.UTF-8");

    Machine() {
        const auto readers = sysinfo::platform::openReaders(sysinfo::SystemRoot::host());
        sysinfo::ProcessSampler sampler(sysinfo::SystemRoot::host());
        fromSampler(sampler.sample(*readers), list);
        for (auto& process : list) {
            const auto app = std::to_string(process.pid % 300);
            if (process.pid % 3 != 0)
                process.path = "/opt/Applications/Vendor " + app + ".app/bin/part";
            else
                process.path = "/usr/lib/vendor-" + app + "/part-" + app;
            process.startTimeMicros = 1;
            run(process);
        }
    }

    static void run(ProcInfo& process) {
        process.cpuPercent = static_cast<double>(process.pid % 97);
        process.cpuTimeNs += 1000;
        process.memBytes = static_cast<uint64_t>(process.pid) * 4096;
    }
};

void owners(benchmark::State& state) {
    Machine machine;
    ProcessOwners owners(machine.index);
    double now = wallSeconds();
    for (auto _ : state) benchmark::DoNotOptimize(owners.update(machine.list, now += 1).data());
    state.counters["processes"] = static_cast<double>(machine.list.size());
}
BENCHMARK(owners)->Unit(benchmark::kMicrosecond);

void firstOwners(benchmark::State& state) {
    Machine machine;
    for (auto _ : state) {
        ProcessOwners owners(std::make_shared<AppOwnerIndex>(sysinfo::SystemRoot::host()));
        benchmark::DoNotOptimize(owners.update(machine.list, wallSeconds()).data());
    }
}
BENCHMARK(firstOwners)->Unit(benchmark::kMillisecond);

void topList(benchmark::State& state) {
    Machine machine;
    ResourceAppGrouper grouper(machine.index);
    for (auto _ : state)
        benchmark::DoNotOptimize(grouper.list(ResourceKind::cpu, machine.list, {}).apps.size());
}
BENCHMARK(topList)->Unit(benchmark::kMicrosecond);

/// A round for the history, in which one process in twenty did something.
void growth(benchmark::State& state) {
    Machine machine;
    ProcessOwners owners(machine.index);
    AppProcessCounters counters;
    uint64_t total = 0;
    double now = wallSeconds();
    for (auto _ : state) {
        for (size_t i = 0; i < machine.list.size(); i += 20) Machine::run(machine.list[i]);
        const auto activity = counters.sample(machine.list, owners.update(machine.list, now += 1));
        total += activity.size();
    }
    benchmark::DoNotOptimize(total);
}
BENCHMARK(growth)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
