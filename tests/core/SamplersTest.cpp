// CPU, memory, load and processes: of captured machines against the values published with them, and of made
// ones.
#include "core/CpuSampler.h"
#include "core/MemStats.h"
#include "core/ProcessSampler.h"
#include "core/linux/Cpu.h"
#include "core/linux/Memory.h"
#include "support/Joined.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using platform::KernelProcess;
using RunState = KernelProcess::RunState;
using namespace quarn::testing;

std::shared_ptr<platform::Readers> readersOf(std::string_view machine) {
    return platform::openReaders(SystemRoot(QUARN_FIXTURES "/hosts/" + std::string(machine)));
}

TEST(CapturedCpu, SharesOfAnIntervalAsPublished) {
    CpuSampler sampler;
    sampler.sample(*readersOf("sixteen-cpus/before"));
    const auto stats = sampler.sample(*readersOf("sixteen-cpus/after"));
    // Published idle and iowait are apart, and so are irq, softirq and system. They were computed from the
    // kernel's own sums, which round apart from those of the CPUs.
    EXPECT_NEAR(stats.idle, 98.79324440645692 + 0.0320620665057134, 1e-4);
    EXPECT_NEAR(stats.system, 0.40175031617741797 + 0.13419615804548835 + 0.0386057575594779, 1e-4);
    EXPECT_NEAR(stats.user, 0.6001311969663126 + 0.000010098288663216828, 1e-4);
    ASSERT_EQ(stats.perCore.size(), 16u);
    EXPECT_NEAR(stats.perCore[0], 100 - 98.99208959203628 - 0.03393637737251638, 1e-6);
    EXPECT_NEAR(stats.perCoreSystem[1], 1.1629581797908097 + 0.18060970340196816 + 0.052596911833010455,
                1e-6);
}

TEST(CapturedCpu, EveryShapeOfTheFileIsRead) {
    const auto read = [](const char* text) { // numbers; user, system, idle, nice of each
        platform::CpuTicks ticks;
        const bool isRead = platform::parseCpuTicks(text, ticks);
        return joined(isRead, joinedEach(ticks.ids, std::identity{}),
                      joinedEach(ticks.ticks, std::identity{}));
    };
    EXPECT_EQ(read("cpu 9\ncpu0 1 2 3 4 5 6 7 8\n"), "1|0 |1 24 9 2 ") << "8 columns";
    EXPECT_EQ(read("cpu0 1 2 3 4 5 6 7 8 9\n"), "1|0 |1 24 9 2 ") << "guest time is in user already";
    EXPECT_EQ(read("cpu0 1 2 3 4 5 6 7 8 9 10\nintr 5\n"), "1|0 |1 24 9 2 ");
    EXPECT_EQ(read("cpu0 1 2 3 4"), "1|0 |1 3 4 2 ") << "the first kernels; no line feed at the end";
    EXPECT_EQ(read("cpu1 1 2 3 4\ncpu7 1 2 3 4\n"), "1|1 7 |1 3 4 2 1 3 4 2 ") << "CPU 0 is offline";
    EXPECT_EQ(read(""), "0||");
    EXPECT_EQ(read("cpu 1 2 3 4\nctxt 5\n"), "0||") << "no CPU of its own";
    EXPECT_EQ(read("cpuX 1 2\ncpu0 a b c 4\n"), "1|0 |0 0 4 0 ") << "words in the place of numbers";
}

TEST(CapturedCpu, ManyCpusAndAnEmptyFile) {
    for (const auto& [machine, cpus] :
         {std::pair{"sparse-48", 48}, {"hybrid-20", 20}, {"arm-128", 128}, {"nine-columns-16", 16}}) {
        CpuSampler sampler;
        EXPECT_EQ(sampler.sample(*readersOf(machine)).perCore.size(), static_cast<size_t>(cpus)) << machine;
    }

    TempRoot machine;
    const auto thousandCpus = [](const std::string& ticks) {
        std::string text = "cpu  0 0 0 0\n";
        for (int i = 0; i < 1000; ++i) text += "cpu" + std::to_string(i) + ticks + " 0 0 0 0 0 0\n";
        return text;
    };
    machine.write("proc/stat", thousandCpus(" 50 0 0 50"));
    const auto readers = platform::openReaders(machine.root());
    CpuSampler sampler;
    EXPECT_EQ(sampler.sample(*readers).perCore.size(), 1000u);
    machine.write("proc/stat", ""); // the kernel could not answer: nothing is known, the baseline stays
    EXPECT_TRUE(sampler.sample(*readers).perCore.empty());
    machine.write("proc/stat", thousandCpus(" 80 0 0 60"));
    EXPECT_DOUBLE_EQ(sampler.sample(*readers).total, 75);
}

/// Of the whole: user, system, idle and total; of each CPU busy and system.
std::string between(platform::CpuTicks before, platform::CpuTicks after) {
    CpuSampler sampler;
    sampler.advance(before);
    const auto stats = sampler.advance(after);
    return joined(stats.user, stats.system, stats.idle, stats.total,
                  joinedEach(stats.perCore, std::identity{}),
                  joinedEach(stats.perCoreSystem, std::identity{}));
}

TEST(CpuSampler, SharesOfTheInterval) {
    EXPECT_EQ(between({{0, 1}, {100, 100, 100, 100, 5, 5, 5, 5}}, {{0, 1}, {120, 110, 160, 110, 5, 5, 5, 5}}),
              "30|10|60|40|40 0 |10 0 ")
        << "CPU 0: user 20, system 10, idle 60, nice 10; CPU 1 did not move at all";
    EXPECT_EQ(between({{0, 1}, {1, 1, 1, 1, 1, 1, 1, 1}}, {{0}, {900, 1, 1, 1}}), "0|0|100|0|0 |0 ");
    EXPECT_EQ(between({{0, 1}, {1, 1, 1, 1, 1, 1, 1, 1}}, {{0, 2}, {9, 1, 1, 1, 900, 1, 1, 1}}),
              "0|0|100|0|0 0 |0 0 ")
        << "CPU 1 went and CPU 2 came: their counters must not be compared";
}

TEST(CpuSampler, WrapAndFallOfACounter) {
    EXPECT_EQ(tickIncrement(0xffff'fff0, 0x10), 0x20u) << "a 32-bit counter that wrapped";
    EXPECT_EQ(tickIncrement(0xffff'fff0, 0x1'0000'0010), 0x20u) << "a 64-bit counter past 2^32";
    EXPECT_EQ(tickIncrement(5000, 4990), 0u) << "idle time that fell";
    EXPECT_EQ(between({{0}, {0, 0, 5000, 0}}, {{0}, {10, 0, 4990, 0}}), "100|0|0|100|100 |0 ")
        << "must not turn the whole interval into idle time";
}

TEST(CapturedMemory, UsedIsWithinATenthOfThePlainFormula) {
    for (const auto* machine : {"one-editor", "sparse-48", "hybrid-20", "arm-128"}) {
        const auto text = quarn::testing::fixture(std::string("hosts/") + machine + "/proc/meminfo");
        platform::MemInfo info;
        ASSERT_TRUE(platform::parseMemInfo(text, info)) << machine;
        const auto plain =
            static_cast<double>(info.memTotal - info.memFree - info.buffers - (info.cached - info.shmem) -
                                info.kReclaimable.value_or(info.sReclaimable));
        const SCMem mem = readMemStats(*readersOf(machine));
        const auto total = static_cast<double>(mem.total);
        EXPECT_NEAR(static_cast<double>(mem.used), plain, total / 10) << machine;
        EXPECT_LE(mem.freePercent, 100u);
        EXPECT_EQ(mem.freeCount, mem.freeBytes);
    }
}

TEST(CapturedMemory, WithoutMemAvailableAnEstimateStandsIn) {
    TempRoot machine;
    machine.write("proc/meminfo",
                  "MemTotal: 1000 kB\nMemFree: 100 kB\nBuffers: 50 kB\nCached: 200 kB\nShmem: 50 kB\n"
                  "SReclaimable: 100 kB\nSwapTotal: 10 kB\nSwapFree: 4 kB\n");
    const SCMem mem = readMemStats(*platform::openReaders(machine.root()));
    EXPECT_EQ(joined(mem.freePercent, mem.swapUsed, mem.pressureLevel), "40|6144|1");
    machine.remove("proc/meminfo");
    const SCMem none = readMemStats(*platform::openReaders(machine.root()));
    EXPECT_EQ(joined(none.total, none.pressureLevel), "0|1") << "never a level of 0";
}

TEST(CapturedMemory, PressureLevels) {
    const auto psi = platform::parseMemoryPressure("some avg10=12.50 avg60=1.00 avg300=0.1 total=7\n"
                                                   "full avg10=3.20 avg60=0.00 avg300=0.0 total=3\n");
    EXPECT_EQ(joined(psi.someAvg10, psi.fullAvg10), "12.5|3.2");
    EXPECT_EQ(platform::memoryPressureLevel(500, 1000, {}), 1u);
    EXPECT_EQ(platform::memoryPressureLevel(500, 1000, psi), 2u);
    EXPECT_EQ(platform::memoryPressureLevel(99, 1000, {}), 2u);
    EXPECT_EQ(platform::memoryPressureLevel(500, 1000, {20, 10}), 4u);
    EXPECT_EQ(platform::memoryPressureLevel(39, 1000, {}), 4u);
    EXPECT_EQ(platform::parseMemoryPressure("some avg10=").someAvg10, 0);
}

TEST(CapturedMemory, CompressedRamDisksCount) {
    TempRoot machine;
    machine.write("proc/meminfo", "MemTotal: 1000 kB\nZswap: 2 kB\n")
        .write("sys/block/zram0/mm_stat", "  8192 4096 5000 0 5000 0 0 0 0\n")
        .write("sys/block/zram3/mm_stat", "1 2 3000 4\n")
        .write("sys/block/sda/stat", "1");
    EXPECT_EQ(readMemStats(*platform::openReaders(machine.root())).compressed, 2048u + 5000 + 3000);
}

TEST(CapturedProcesses, NumbersAsPublished) {
    const auto readers = readersOf("one-editor");
    ProcessSampler sampler(SystemRoot(QUARN_FIXTURES "/hosts/one-editor"));
    const auto& list = sampler.sample(*readers);
    ASSERT_EQ(list.size(), 3u);

    EXPECT_EQ(joined(list[0].pid, list[0].name, list[0].state), "584|(a b ) ( c d) |Running")
        << "a name of blanks and brackets";
    EXPECT_EQ(joined(list[2].name, list[2].ioKnown), "ata_sff|0");
    const auto& vim = list[1];
    EXPECT_EQ(joined(vim.name, vim.path, vim.ppid, vim.uid, vim.user), "vim|/usr/bin/vim|5392|1000|1000")
        << "a captured machine without accounts shows the number";
    EXPECT_EQ(joined(vim.cpuTimeNs / 10'000'000, vim.startTime, vim.memBytes / 1024, vim.contextSwitches,
                     vim.diskRead, vim.diskWrite, vim.ioKnown),
              joined(1677 + 44, 1418183276 + 823, 2092 + 660, 4742839 + 1727500, 1024, 2048, true));

    double load[3];
    EXPECT_EQ(platform::loadAverage(*readers, load), 3);
    EXPECT_DOUBLE_EQ(load[0], 0.02);
    EXPECT_EQ(platform::bootTime(SystemRoot(QUARN_FIXTURES "/hosts/one-editor")), 1418183276u);
}

KernelProcess process(int32_t pid, uint64_t start, uint64_t cpuNs, uint64_t revision) {
    KernelProcess p;
    p.pid = pid;
    p.startTimeMicros = start;
    p.cpuTimeNs = cpuNs;
    p.revision = revision;
    p.state = RunState::sleeping;
    p.measured = true;
    p.shortName = "p";
    return p;
}

constexpr uint64_t oneSecond = 1'000'000'000;

TEST(ProcessSampler, ShareOfEachCase) {
    ProcessSampler sampler(SystemRoot("/nowhere"));
    std::vector<KernelProcess> before{process(1, 10, 5 * oneSecond, 1), process(2, 10, 100, 2),
                                      process(3, 10, 9000, 3), process(4, 10, 50, 4), process(6, 10, 7, 5)};
    for (const auto& info : sampler.advance(before, oneSecond))
        EXPECT_EQ(info.cpuPercent, 0) << "the first call primes";

    std::vector<KernelProcess> after{
        process(1, 10, 5 * oneSecond + 3 * oneSecond, 6), // three cores for a second
        process(2, 10, 100, 2),                           // idle: the same revision
        process(3, 11, 9000 + oneSecond, 7),              // the pid is another process now
        process(4, 10, 40, 8),                            // the counter went backwards
        process(5, 10, oneSecond, 9),                     // new
        process(6, 10, 7 + oneSecond, 10)};
    after[5].measured = false;
    const auto& list = sampler.advance(after, 2 * oneSecond);
    EXPECT_EQ(joinedEach(list, &ProcessInfo::cpuPercent, &ProcessInfo::state),
              "300|Sleeping 0|Sleeping 0|Sleeping 0|Sleeping 0|Sleeping 0|— ");
    EXPECT_FALSE(list[5].accessible);

    // Pid 3 is measured against itself from now on.
    after[2].cpuTimeNs += oneSecond / 2;
    after[2].revision = 11;
    EXPECT_DOUBLE_EQ(sampler.advance(after, 3 * oneSecond)[2].cpuPercent, 50);
}

TEST(ProcessSampler, NameRule) {
    const char* const cases[][4] = {
        {"a cut name", "gnome-terminal-", "/usr/libexec/gnome-terminal-server", "gnome-terminal-server"},
        {"a shorter file name never replaces", "Web Content", "/usr/lib/firefox", "Web Content"},
        {"equal", "bash", "/bin/bash", "bash"},
        {"longer than the kernel keeps whole", "exactly16bytes_x", "/bin/sh", "sh"},
        {"no executable", "kworker/0:1", "", "kworker/0:1"},
        {"no last component", "x", "/usr/bin/", "x"},
        {"a path of one component", "x", "python3", "python3"},
    };
    for (const auto& [rule, shortName, path, expected] : cases)
        EXPECT_EQ(displayName(shortName, path), expected) << rule;
}

TEST(ProcessSampler, StatesAndUsers) {
    TempRoot machine;
    machine.write("etc/passwd", "root:x:0:0::/:/bin/sh\nbroken line\nann:x:1000:1000:Ann:/:/bin/sh\n");
    ProcessSampler sampler(machine.root());
    std::vector<KernelProcess> table;
    for (const auto state : {RunState::starting, RunState::running, RunState::sleeping, RunState::stopped,
                             RunState::zombie, RunState::unknown}) {
        table.push_back(process(static_cast<int32_t>(table.size()) + 1, 1, 1, table.size() + 1));
        table.back().state = state;
    }
    table[0].uid = 1000;
    table[1].uid = 4711;
    EXPECT_EQ(joinedEach(sampler.advance(table, oneSecond), &ProcessInfo::state, &ProcessInfo::user),
              "Starting|ann Running|4711 Sleeping|root Stopped|root Zombie|root —|root ");
}

} // namespace
