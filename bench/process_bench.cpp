// The process list at 2,000 idle processes: what a tick costs, and its pieces.
#include "IdleProcesses.h"
#include "core/ProcessSampler.h"
#include "core/linux/ProcessReader.h"
#include "core/linux/ProcessTable.h"

#include <benchmark/benchmark.h>

namespace {

using namespace sysinfo;

constexpr int processes = 2000;

void steadyList(benchmark::State& state) {
    const quarn::bench::IdleProcesses idle(processes);
    const auto readers = platform::openReaders(SystemRoot::host());
    ProcessSampler sampler(SystemRoot::host());
    sampler.sample(*readers);
    size_t count = 0;
    for (auto _ : state) {
        if (state.range(0) > 0) {
            state.PauseTiming();
            idle.poke(static_cast<int>(state.range(0)));
            state.ResumeTiming();
        }
        count = sampler.sample(*readers).size();
    }
    state.counters["processes"] = static_cast<double>(count);
}
BENCHMARK(steadyList)->Arg(0)->Arg(100)->Unit(benchmark::kMillisecond);

void firstList(benchmark::State& state) {
    const quarn::bench::IdleProcesses idle(processes);
    for (auto _ : state) {
        const auto readers = platform::openReaders(SystemRoot::host());
        ProcessSampler sampler(SystemRoot::host());
        benchmark::DoNotOptimize(sampler.sample(*readers).size());
    }
}
BENCHMARK(firstList)->Unit(benchmark::kMillisecond);

void processClock(benchmark::State& state) {
    const quarn::bench::IdleProcesses idle(1);
    for (auto _ : state) benchmark::DoNotOptimize(platform::processClock(::getppid()));
}
BENCHMARK(processClock)->Unit(benchmark::kMicrosecond);

void fullReading(benchmark::State& state) {
    platform::ProcessReader reader(SystemRoot::host(), 0);
    platform::KernelProcess process;
    process.pid = ::getppid();
    for (auto _ : state) benchmark::DoNotOptimize(reader.read(process));
}
BENCHMARK(fullReading)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
