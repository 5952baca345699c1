// What one document of `quarn stream --json` costs to write, without the sampling.
#include "cli/Json.h"

#include <benchmark/benchmark.h>

namespace {

using namespace quarn;

Snapshot snapshotWith(int64_t processes) {
    Snapshot snapshot;
    snapshot.generation = snapshot.processGeneration = 2;
    snapshot.cpu.perCore.assign(16, 12.345678);
    snapshot.cpu.perCoreSystem.assign(16, 1.5);
    std::vector<ProcInfo> list;
    for (int64_t pid = 1; pid <= processes; ++pid) {
        ProcInfo process;
        process.pid = pid * 7;
        process.name = "worker-" + std::to_string(pid);
        process.user = "someone";
        process.state = "Sleeping";
        process.path = "/usr/lib/something/bin/worker";
        process.cpuPercent = static_cast<double>(pid) / 7;
        process.memBytes = static_cast<uint64_t>(pid) * 123'456;
        process.cpuTimeNs = static_cast<uint64_t>(pid) * 1'234'567'891;
        process.startTimeMicros = 1'700'000'000'000'000 + static_cast<uint64_t>(pid);
        process.accessible = process.ioKnown = true;
        process.diskWriteRate = static_cast<double>(pid) * 1234.567;
        list.push_back(process);
    }
    snapshot.processes = std::move(list);
    return snapshot;
}

void writeSnapshot(benchmark::State& state) {
    const Snapshot snapshot = snapshotWith(state.range(0));
    cli::JsonWriter json;
    for (auto _ : state) {
        json.clear();
        cli::writeJson(json, snapshot, {});
        benchmark::DoNotOptimize(json.text().data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * json.text().size()));
}
BENCHMARK(writeSnapshot)->Arg(500)->Arg(2000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
