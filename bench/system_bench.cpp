// The machine-wide readings of a tick in steady state, each next to what the kernel takes for the same at
// least, so that the difference is ours.
#include "core/InterfaceList.h"
#include "core/Storage.h"
#include "core/linux/LinkSocket.h"
#include "core/linux/Readers.h"

#include <benchmark/benchmark.h>

namespace {

using namespace sysinfo;

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
