// The live history of half an hour: what a tick costs, and saving and restoring 1,800 samples of a machine
// with 64 cores (`most`) or 8 (`usual`) that runs 300 or 60 applications. Prints the size of the archives.
#include "history/HistoryArchive.h"
#include "history/HistoryStore.h"
#include "history/HistoryTime.h"
#include "history/HistoryTopProcesses.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <random>

#include <fmt/format.h>

namespace {

using namespace quarn;

constexpr int64_t now = 1'790'000'000;
std::mt19937_64 random(1);

double upTo(double most) { return std::uniform_real_distribution<double>(0, most)(random); }
uint64_t below(uint64_t most) { return std::uniform_int_distribution<uint64_t>(0, most - 1)(random); }

/// As the kernel's counters of hundredths of a second give it; most cores have little to do.
double coreShare() { return 100.0 * static_cast<double>(below(20)) / static_cast<double>(98 + below(5)); }

/// A machine of which most stands still, as of any that is used.
Snapshot busySnapshot(size_t cores, size_t processes, int64_t second) {
    Snapshot snapshot;
    snapshot.generation = snapshot.processGeneration = snapshot.disksGeneration =
        snapshot.interfacesGeneration = second + 2;
    snapshot.timestamp = wallTime(now + second) + std::chrono::microseconds(below(1000));
    for (size_t core = 0; core < cores; ++core) {
        snapshot.cpu.perCore.push_back(coreShare());
        snapshot.cpu.perCoreSystem.push_back(coreShare() / 4);
    }
    snapshot.cpu.total = upTo(100);
    snapshot.cpu.user = upTo(100);
    snapshot.cpu.system = upTo(100);
    snapshot.mem.total = snapshot.mem.used = 8'000'000'000 + 4096 * below(1'000'000);
    snapshot.disk.diskCount = 2;
    snapshot.disk.readRate = upTo(1e8);
    snapshot.disk.writeRate = upTo(1e8);
    snapshot.disk.activeFraction = upTo(1);
    snapshot.net.rxRate = upTo(1e7);
    snapshot.net.txRate = upTo(1e7);
    snapshot.power.sysWatts = upTo(60);
    snapshot.power.cpuWatts = upTo(60);
    snapshot.temps = {{"TC00", std::round(40 + upTo(40))}, {"TH00", std::round(40 + upTo(4))}};
    snapshot.gpu = {upTo(100), upTo(100), -1, 1 << 30, 1U << 31};
    std::vector<DiskDevice> disks(2);
    for (auto& disk : disks) disk.bsd = fmt::format("nvme{}n1", &disk - disks.data());
    disks[0].readRate = snapshot.disk.readRate;
    std::vector<NetInterface> interfaces(4);
    for (auto& interface : interfaces) interface.name = fmt::format("eth{}", &interface - interfaces.data());
    interfaces[0].rxRate = snapshot.net.rxRate;
    snapshot.disks = std::move(disks);
    snapshot.interfaces = std::move(interfaces);

    static std::vector<ProcInfo> list;
    list.resize(processes);
    for (size_t i = 0; i < list.size(); ++i) {
        list[i].pid = static_cast<int64_t>(i + 1);
        list[i].startTimeMicros = 1'000'000 + i;
        if (list[i].name.empty()) list[i].name = fmt::format("process-{}", i);
        list[i].cpuPercent = i % 40 == 0 ? upTo(100) : 0;
        list[i].memBytes = 4096 * below(100'000);
    }
    snapshot.processes = list;
    snapshot.totalThreads = static_cast<int64_t>(4 * processes);
    return snapshot;
}

std::vector<AppActivity> activity(size_t apps) {
    static std::vector<AppActivity> list;
    list.resize(apps);
    for (size_t i = 0; i < apps; ++i) {
        if (list[i].app.empty()) list[i].app = fmt::format("/usr/share/applications/app-{:03}.desktop", i);
        list[i].memBytes = 4096 * below(100'000);
        list[i].growth = {};
        if (i % 4 == 0) list[i].growth = {below(1'000'000'000), 4096 * below(100), 0, below(1000), 0, false};
    }
    return list;
}

std::vector<SensorGroups::Maximum> maximaOf(const Snapshot& snapshot) {
    return SensorGroups::maxima({snapshot.temps.data(), snapshot.temps.size()}, SensorNaming::intel);
}

struct HalfHour {
    HalfHour(size_t cores, size_t appCount) {
        HistoryTopProcesses top;
        for (int64_t second = 0; second < 1800; ++second) {
            const Snapshot snapshot = busySnapshot(cores, 400, second);
            const auto* previous = store.samples().empty() ? nullptr : store.samples().back().get();
            store.append(
                std::make_shared<HistorySample>(snapshot, top.update(snapshot), maximaOf(snapshot), previous),
                snapshot.timestamp);
            apps.add(snapshot.timestamp, activity(appCount));
        }
        archive = HistoryArchive::encode(store.samples(), {}, apps);
        std::printf("%zu cores, %zu applications: %zu samples, %.2f MB\n", cores, appCount,
                    store.samples().size(), static_cast<double>(archive.size()) / 1e6);
    }
    HistoryStore store;
    AppLiveHistory apps;
    Data archive;
};

const HalfHour& halfHour(benchmark::State& state) {
    static const HalfHour usual(8, 60), most(64, 300);
    return state.range(0) == 64 ? most : usual;
}
#define CORES ->ArgName("cores")->Arg(8)->Arg(64)->Unit(benchmark::kMillisecond)

void restore(benchmark::State& state) {
    const HalfHour& from = halfHour(state);
    for (auto _ : state) {
        auto decoded = HistoryArchive::decode(from.archive);
        auto& content = std::get<HistoryArchive::Content>(decoded);
        HistoryStore store;
        AppLiveHistory apps;
        store.restore(std::move(content.samples), std::move(content.breaks), wallTime(now + 1800));
        apps.restore(std::move(content.apps), wallTime(now + 1800));
        if (store.samples().size() < 1700) std::abort();
    }
}
BENCHMARK(restore) CORES;

void encode(benchmark::State& state) {
    const HalfHour& from = halfHour(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(HistoryArchive::encode(from.store.samples(), {}, from.apps));
}
BENCHMARK(encode) CORES;

void copyStore(benchmark::State& state) {
    const HalfHour& from = halfHour(state);
    for (auto _ : state) benchmark::DoNotOptimize(HistoryStore(from.store));
}
BENCHMARK(copyStore)->ArgName("cores")->Arg(64)->Unit(benchmark::kMicrosecond);

void copyApps(benchmark::State& state) {
    const HalfHour& from = halfHour(state);
    for (auto _ : state) benchmark::DoNotOptimize(AppLiveHistory(from.apps));
}
BENCHMARK(copyApps)->ArgName("cores")->Arg(64)->Unit(benchmark::kMicrosecond);

void rankApps(benchmark::State& state) {
    const HalfHour& from = halfHour(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(from.apps.totals(wallTime(now + 1800), AppHistoryMetric::cpu, 10));
}
BENCHMARK(rankApps)->ArgName("cores")->Arg(64)->Unit(benchmark::kMicrosecond);

void topOf2000Processes(benchmark::State& state) {
    Snapshot snapshot = busySnapshot(8, 2000, 0);
    HistoryTopProcesses top;
    for (auto _ : state) {
        ++snapshot.processGeneration;
        snapshot.timestamp += std::chrono::seconds(1);
        benchmark::DoNotOptimize(top.update(snapshot));
    }
}
BENCHMARK(topOf2000Processes)->Unit(benchmark::kMicrosecond);

void sampleAndAppend(benchmark::State& state) {
    const auto cores = static_cast<size_t>(state.range(0));
    Snapshot snapshot = busySnapshot(cores, 400, 0);
    const auto maxima = maximaOf(snapshot);
    HistoryTopProcesses top;
    HistoryStore store;
    SharedSample last;
    for (auto _ : state) {
        ++snapshot.generation;
        ++snapshot.disksGeneration;
        ++snapshot.interfacesGeneration;
        snapshot.timestamp += std::chrono::seconds(1);
        last = std::make_shared<const HistorySample>(snapshot, top.update(snapshot), maxima, last.get());
        store.append(last, snapshot.timestamp);
    }
}
BENCHMARK(sampleAndAppend)->ArgName("cores")->Arg(8)->Arg(64)->Unit(benchmark::kMicrosecond);

void appRound(benchmark::State& state) {
    const auto list = activity(300);
    AppLiveHistory apps;
    WallTime at = wallTime(now);
    for (auto _ : state) apps.add(at += std::chrono::seconds(1), list);
}
BENCHMARK(appRound)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
