#include "cli/SampleSnapshot.h"

#include <array>

namespace quarn::testing {
namespace {

constexpr uint64_t gib = 1ull << 30;

ProcInfo process(size_t index) {
    constexpr std::array names{"systemd", "firefox", "postgres", "sshd", "cc1plus", "node", "bash"};
    ProcInfo info;
    info.pid = static_cast<int64_t>(1 + index * 37);
    info.ppid = index == 0 ? 0 : 1;
    info.name = names[index % names.size()];
    info.user = index % 2 == 0 ? "ada" : "root";
    info.uid = index % 2 == 0 ? 1000 : 0;
    info.state = index % 5 == 0 ? "Running" : "Sleeping";
    info.path = "/usr/bin/thing";
    info.cpuPercent = static_cast<double>(index * 13 % 101) / 3;
    info.memBytes = (index * 29 % 31 + 1) << 22;
    info.threads = static_cast<int64_t>(1 + index % 9);
    info.cpuTimeNs = index * 7'123'456'789;
    info.startTime = 1'700'000'000 + index;
    info.startTimeMicros = (1'700'000'000 + index) * 1'000'000;
    info.accessible = true;
    info.ioKnown = index % 2 == 0;
    info.diskRead = info.ioKnown ? index * 1000 : 0;
    info.diskReadRate = info.ioKnown ? static_cast<double>(index * 1234) : 0;
    return info;
}

} // namespace

Snapshot sampleSnapshot(size_t cores, size_t processes) {
    Snapshot snapshot;
    snapshot.cpu = {
        .total = 23.4, .user = 18.2, .system = 5.2, .idle = 76.6, .perCore = {}, .perCoreSystem = {}};
    for (size_t core = 0; core < cores; ++core) {
        snapshot.cpu.perCore.push_back(static_cast<double>(core * 31 % 101));
        snapshot.cpu.perCoreSystem.push_back(static_cast<double>(core * 31 % 101) / 4);
    }
    snapshot.mem.total = 8 * gib;
    snapshot.mem.used = 3 * gib;
    snapshot.mem.app = 2 * gib;
    snapshot.mem.wired = gib;
    snapshot.mem.cached = 2 * gib;
    snapshot.mem.freeBytes = 3 * gib;
    snapshot.mem.swapTotal = 2 * gib;
    snapshot.mem.swapUsed = gib / 2;
    snapshot.mem.pressureLevel = 1;
    snapshot.net.rxBytes = 1'000'000;
    snapshot.net.rxRate = 1'200'000;
    snapshot.net.txRate = 34'000;
    snapshot.disk.diskCount = 1;
    snapshot.disk.readRate = 1'200'000;
    snapshot.disk.activeFraction = 0.034;
    snapshot.gpu.device = snapshot.gpu.renderer = snapshot.gpu.tiler = -1;
    std::vector<ProcInfo> list;
    for (size_t index = 0; index < processes; ++index) list.push_back(process(index));
    snapshot.processes = std::move(list);
    snapshot.totalThreads = 211;
    snapshot.loadAvg = {0.52, 0.41, 0.30};
    snapshot.uptime = 273'600;
    snapshot.generation = 2;
    snapshot.processGeneration = 2;
    snapshot.thermalState = ThermalState::fair;
    snapshot.timestamp = WallTime(std::chrono::microseconds(1'700'000'000'250'000));
    return snapshot;
}

} // namespace quarn::testing
