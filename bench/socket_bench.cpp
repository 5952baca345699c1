// The socket list at 20,000 sockets: a first listing, a repeated one, and their pieces.
#include "SocketFarm.h"
#include "core/SocketList.h"
#include "core/linux/SocketDiag.h"
#include "core/linux/SocketHolders.h"

#include <benchmark/benchmark.h>
#include <netinet/in.h>

namespace {

using namespace sysinfo;

const quarn::bench::SocketFarm& farm() {
    static const quarn::bench::SocketFarm sockets(20'000, 4);
    return sockets;
}

/// Lists and makes the record of every socket.
size_t useAll(SocketLister& lister) {
    const auto sockets = lister.list(SocketScope::all).value();
    for (const auto* socket : sockets) benchmark::DoNotOptimize(flatSocket(*socket));
    return sockets.size();
}

void firstListing(benchmark::State& state) {
    farm();
    for (auto _ : state) {
        SocketLister lister(SystemRoot::host());
        useAll(lister);
    }
}
BENCHMARK(firstListing)->Unit(benchmark::kMillisecond);

void repeatedListing(benchmark::State& state) {
    farm();
    SocketLister lister(SystemRoot::host());
    size_t count = useAll(lister);
    for (auto _ : state) count = useAll(lister);
    state.counters["sockets"] = static_cast<double>(count);
}
BENCHMARK(repeatedListing)->Unit(benchmark::kMillisecond);

void tableDump(benchmark::State& state) {
    farm();
    platform::SocketDiag diag;
    std::vector<platform::SocketEntry> entries;
    for (auto _ : state) {
        entries.clear();
        for (const uint8_t protocol : {IPPROTO_TCP, IPPROTO_UDP})
            for (const bool isIPv6 : {false, true})
                diag.read({protocol, isIPv6}, platform::SocketDiag::Idle::left, entries);
    }
    state.counters["sockets"] = static_cast<double>(entries.size());
}
BENCHMARK(tableDump)->Unit(benchmark::kMillisecond);

void descriptorWalk(benchmark::State& state) {
    farm();
    for (auto _ : state) {
        platform::SocketHolders holders(SystemRoot::host());
        holders.start();
        while (const auto* holder = holders.next()) benchmark::DoNotOptimize(holder->inodes.data());
    }
}
BENCHMARK(descriptorWalk)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
