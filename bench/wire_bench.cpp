// The process list on the wire: how fast it is written and read, and what leaving out known paths saves.

#include "HelperKit/ProcessWire.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>

namespace {

using namespace quarn;

/// Command paths of a desktop and of a server: 55 bytes on average.
constexpr std::array<std::string_view, 12> paths{
    "/usr/bin/bash",
    "/usr/sbin/sshd",
    "/usr/lib/systemd/systemd-journald",
    "/usr/libexec/gnome-shell-calendar-server",
    "/usr/lib/x86_64-linux-gnu/libexec/kactivitymanagerd",
    "/usr/lib/x86_64-linux-gnu/webkit2gtk-4.1/WebKitWebProcess",
    "/snap/firefox/4848/usr/lib/firefox/firefox",
    "/opt/google/chrome/chrome_crashpad_handler",
    "/home/somebody/.local/share/Steam/ubuntu12_64/steamwebhelper",
    "/home/somebody/.vscode-server/cli/servers/Stable-8b3775030ed1a69b13e4f4c628c612102e30a681/server/node",
    "/var/lib/docker/overlay2/0c9b2f61d7a84b5c9f2e7d3a1b6c8e4f0c9b2f61d7a84b5c9f2e7d3a1b6c8e4f/merged/usr/"
    "lib/"
    "postgresql/15/bin/postgres",
    "/nix/store/4qxs5p2n2v9lq9vkfv1xv0v3d5m6y7zr-python3-3.11.9/bin/python3.11",
};
constexpr std::array<std::string_view, 6> states{"running",  "sleeping", "sleeping",
                                                 "sleeping", "idle",     "disk sleep"};

HelperProcessList listOf(size_t count) {
    HelperProcessList list;
    for (size_t i = 0; i < count; ++i) {
        HelperProcess process;
        process.pid = static_cast<int64_t>(1000 + i);
        process.ppid = 1;
        process.uid = 1000;
        process.path = paths[i % paths.size()];
        process.name = process.path.substr(process.path.rfind('/') + 1, 15);
        process.user = i % 3 ? "somebody" : "root";
        process.state = states[i % states.size()];
        process.memBytes = i * 4096;
        process.startTimeMicros = 1'700'000'000'000'000 + i * 12'345;
        process.accessible = true;
        process.energyNj = i;
        list.processes.push_back(process);
    }
    return list;
}

double meanPathLength(const HelperProcessList& list) {
    double sum = 0;
    for (const auto& process : list.processes) sum += static_cast<double>(process.path.size());
    return sum / static_cast<double>(list.processes.size());
}

void countProcesses(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * state.range(0)); }

void encodeFirst(benchmark::State& state) {
    const auto list = listOf(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        ProcessWire::Paths sent;
        benchmark::DoNotOptimize(ProcessWire::encode(list, sent));
    }
    countProcesses(state);
}

void encodeAgain(benchmark::State& state) {
    const auto list = listOf(static_cast<size_t>(state.range(0)));
    ProcessWire::Paths sent;
    const auto first = static_cast<double>(ProcessWire::encode(list, sent).size());
    for (auto _ : state) benchmark::DoNotOptimize(ProcessWire::encode(list, sent));
    countProcesses(state);
    state.counters["path bytes"] = meanPathLength(list);
    state.counters["% of first"] = 100 * static_cast<double>(ProcessWire::encode(list, sent).size()) / first;
}

void decodeFirst(benchmark::State& state) {
    ProcessWire::Paths sent;
    const auto first = ProcessWire::encode(listOf(static_cast<size_t>(state.range(0))), sent);
    for (auto _ : state) {
        ProcessWire::Paths known;
        benchmark::DoNotOptimize(ProcessWire::decode(first, known));
    }
    countProcesses(state);
}

void decodeAgain(benchmark::State& state) {
    const auto list = listOf(static_cast<size_t>(state.range(0)));
    ProcessWire::Paths sent, known;
    ProcessWire::decode(ProcessWire::encode(list, sent), known);
    const auto second = ProcessWire::encode(list, sent);
    for (auto _ : state) benchmark::DoNotOptimize(ProcessWire::decode(second, known));
    countProcesses(state);
}

BENCHMARK(encodeFirst)->Arg(400)->Arg(2000);
BENCHMARK(encodeAgain)->Arg(400)->Arg(2000)->Arg(20000);
BENCHMARK(decodeFirst)->Arg(400)->Arg(2000);
BENCHMARK(decodeAgain)->Arg(400)->Arg(2000)->Arg(20000);

} // namespace

BENCHMARK_MAIN();
