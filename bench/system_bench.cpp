// The machine-wide readings of a tick in steady state, each next to what the kernel takes for the same at
// least, so that the difference is ours.
#include "core/InterfaceList.h"
#include "core/MemStats.h"
#include "core/SCSampler.h"
#include "core/Storage.h"
#include "core/linux/LinkSocket.h"
#include "core/linux/Readers.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

namespace {

using namespace sysinfo;

/// CPU, memory, disk, network and load: all that a tick reads of the machine as a whole.
void readSystemPart(SCSampler& sampler) {
    auto& readers = *sampler.readers;
    double load[3];
    benchmark::DoNotOptimize(sampler.cpu.sample(readers));
    benchmark::DoNotOptimize(readMemStats(readers));
    benchmark::DoNotOptimize(sampler.disk.sample(readers));
    benchmark::DoNotOptimize(sampler.net.sample(readers));
    benchmark::DoNotOptimize(platform::loadAverage(readers, load));
}

void systemPart(benchmark::State& state) {
    SCSampler sampler(SystemRoot::host());
    for (auto _ : state) readSystemPart(sampler);
}
BENCHMARK(systemPart)->Unit(benchmark::kMicrosecond);

/// The same as it is in a program that did something else since the last tick: nothing of it is in the
/// processor's own caches any more.
void systemPartCold(benchmark::State& state) {
    SCSampler sampler(SystemRoot::host());
    std::vector<char> other(16 << 20);
    for (auto _ : state) {
        for (size_t i = 0; i < other.size(); i += 64) benchmark::DoNotOptimize(++other[i]);
        const auto before = std::chrono::steady_clock::now();
        readSystemPart(sampler);
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count());
    }
}
BENCHMARK(systemPartCold)->Unit(benchmark::kMicrosecond)->UseManualTime();

void links(benchmark::State& state) {
    const auto readers = platform::openReaders(SystemRoot::host());
    std::vector<platform::Link> list;
    for (auto _ : state) benchmark::DoNotOptimize(platform::listLinks(*readers, list));
    state.counters["links"] = static_cast<double>(list.size());
}
BENCHMARK(links)->Unit(benchmark::kMicrosecond);

/// With names and kinds asked each time: what a reading costs when a link changed.
void linksAskedInFull(benchmark::State& state) {
    for (auto _ : state) {
        platform::LinkSocket socket;
        benchmark::DoNotOptimize(socket.read());
    }
}
BENCHMARK(linksAskedInFull)->Unit(benchmark::kMicrosecond);

void interfaceListing(benchmark::State& state) {
    const auto readers = platform::openReaders(SystemRoot::host());
    InterfaceList list;
    for (auto _ : state) benchmark::DoNotOptimize(list.sample(*readers).size());
}
BENCHMARK(interfaceListing)->Unit(benchmark::kMicrosecond);

void interfaceListingStateless(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(readInterfaces(SystemRoot::host()).size());
}
BENCHMARK(interfaceListingStateless)->Unit(benchmark::kMicrosecond);

void disks(benchmark::State& state) {
    const auto readers = platform::openReaders(SystemRoot::host());
    std::vector<platform::DriveCounters> drives;
    for (auto _ : state) benchmark::DoNotOptimize(platform::readDriveCounters(*readers, drives));
    state.counters["drives"] = static_cast<double>(drives.size());
}
BENCHMARK(disks)->Unit(benchmark::kMicrosecond);

void diskstatsAlone(benchmark::State& state) {
    const auto readers = platform::openReaders(SystemRoot::host());
    for (auto _ : state) benchmark::DoNotOptimize(readers->diskstats.read());
}
BENCHMARK(diskstatsAlone)->Unit(benchmark::kMicrosecond);

void diskListing(benchmark::State& state) {
    const auto readers = platform::openReaders(SystemRoot::host());
    DiskDeviceList list(SystemRoot::host());
    for (auto _ : state) benchmark::DoNotOptimize(list.sample(*readers).size());
}
BENCHMARK(diskListing)->Unit(benchmark::kMicrosecond);

void diskListingStateless(benchmark::State& state) {
    SCDiskDevice devices[16];
    for (auto _ : state) benchmark::DoNotOptimize(diskDevices(SystemRoot::host(), devices, 16));
}
BENCHMARK(diskListingStateless)->Unit(benchmark::kMicrosecond);

void volumes(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(readVolumes(SystemRoot::host()).size());
}
BENCHMARK(volumes)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
