#include "core/linux/GpuClients.h"
#include "core/GpuStats.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;
using quarn::testing::TempRoot;

TEST(DrmUsage, ReadsEveryKindOfLine) {
    const auto usage = parseDrmUsage("pos:\t0\nflags:\t02400002\ndrm-driver:\txe\ndrm-pdev:\t0000:00:02.0\n"
                                     "drm-client-id:\t42\ndrm-cycles-rcs:\t28257900\n"
                                     "drm-total-cycles-rcs:\t7655183225\ndrm-engine-video:\t1234 ns\n"
                                     "drm-engine-capacity-video:\t2\ndrm-maxfreq-video:\t5 Hz\n"
                                     "drm-resident-vram0:\t2 MiB\ndrm-resident-system:\t1 KiB\n"
                                     "drm-total-system:\t12\ndrm-memory-system:\t99 MiB\n");
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->driver, "xe");
    EXPECT_EQ(usage->slot, "0000:00:02.0");
    EXPECT_EQ(usage->clientId, 42u);
    ASSERT_EQ(usage->engines.size(), 2u);
    EXPECT_EQ(usage->engines[0].cycles, 28257900u);
    EXPECT_EQ(usage->engines[0].totalCycles, 7655183225u) << "\"total-cycles-\" is no memory region";
    EXPECT_FALSE(usage->engines[0].busyNs);
    EXPECT_EQ(usage->engines[1].busyNs, 1234u);
    EXPECT_EQ(usage->engines[1].capacity, 2u);
    EXPECT_EQ(usage->residentBytes, (2u << 20) + 1024u);
    EXPECT_EQ(usage->totalBytes, 12u) << "without a unit: bytes";
}

TEST(DrmUsage, OddText) {
    EXPECT_FALSE(parseDrmUsage(""));
    EXPECT_FALSE(parseDrmUsage("pos: 0\nflags: 02\neventfd-count: 0\n"));
    const auto odd =
        parseDrmUsage("drm-driver: i915\ndrm-client-id: x\ndrm-engine-render: -5 ns\n"
                      "drm-engine-capacity-render: 0\ndrm-memory-local: 99999999999999999999 KiB\n"
                      "drm-memory-system: 18446744073709551615 GiB\ndrm-engine-\n");
    ASSERT_TRUE(odd);
    EXPECT_FALSE(odd->clientId);
    EXPECT_FALSE(odd->engines[0].busyNs);
    EXPECT_EQ(odd->engines[0].capacity, 1u) << "never a division by 0";
    EXPECT_FALSE(odd->residentBytes) << "more than 64 bits";
    EXPECT_EQ(parseDrmUsage("drm-driver: i915\ndrm-memory-system: 3 KiB\n")->residentBytes, 3072u)
        << "the older name";
}

TEST(DrmUsageCaptures, WhatTheKernelsManualShows) {
    const auto file = quarn::testing::outsideCapture("kernel-doc-fdinfo/panfrost.fdinfo");
    if (!file) GTEST_SKIP() << "no captures beside the repository";
    TempRoot machine;
    machine.folder("proc/7/fdinfo").link("proc/7/fd/3", "/dev/dri/renderD128");
    std::filesystem::copy(*file, machine.path() / "proc/7/fdinfo/3");
    DrmDescriptors descriptors(machine.root());
    descriptors.update();
    const auto usages = descriptors.read();
    ASSERT_EQ(usages.size(), 1u);
    EXPECT_EQ(usages[0].clientId, 14u);
    EXPECT_EQ(usages[0].engines.size(), 2u);
    EXPECT_EQ(usages[0].residentBytes, 36496u * 1024);
}

DrmUsage client(uint64_t id, std::vector<DrmEngine> engines, std::string slot = "0000:00:02.0") {
    DrmUsage usage;
    usage.driver = "i915";
    usage.slot = std::move(slot);
    usage.clientId = id;
    usage.engines = std::move(engines);
    return usage;
}

DrmEngine timed(std::string name, uint64_t ns, uint32_t capacity = 1) {
    DrmEngine engine;
    engine.name = std::move(name);
    engine.busyNs = ns;
    engine.capacity = capacity;
    return engine;
}

DrmEngine clocked(uint64_t cycles, std::optional<uint64_t> total, uint64_t maxHz = 0) {
    DrmEngine engine;
    engine.name = "rcs";
    engine.cycles = cycles;
    engine.totalCycles = total;
    engine.maxHz = maxHz;
    return engine;
}

TEST(DrmLoads, Shares) {
    struct Case {
        const char* teaches;
        std::vector<DrmUsage> before, after;
        std::optional<double> busy, renderer, tiler;
    };
    const uint64_t second = 1'000'000'000;
    for (const auto& c : {
             Case{"time over time",
                  {client(1, {timed("render", 0)})},
                  {client(1, {timed("render", second)})},
                  50,
                  50,
                  {}},
             Case{"two video engines of one name",
                  {client(1, {timed("video", 0, 2)})},
                  {client(1, {timed("video", second, 2)})},
                  25,
                  {},
                  {}},
             Case{"the busiest engine counts, clients of one engine add up",
                  {client(1, {timed("copy", 0), timed("video", 0)}), client(2, {timed("video", 0)})},
                  {client(1, {timed("copy", second), timed("video", second)}),
                   client(2, {timed("video", second / 2)})},
                  75,
                  {},
                  {}},
             Case{"cycles over cycles",
                  {client(1, {clocked(100, 1000)})},
                  {client(1, {clocked(200, 1400)})},
                  25,
                  25,
                  {}},
             Case{"cycles over the highest clock",
                  {client(1, {clocked(0, {}, 1000)})},
                  {client(1, {clocked(500, {}, 1000)})},
                  25,
                  25,
                  {}},
             Case{"cycles and nothing to compare them with",
                  {client(1, {clocked(0, {})})},
                  {client(1, {clocked(500, {})})},
                  {},
                  {},
                  {}},
             Case{"one client, many descriptors: the largest figure",
                  {client(1, {timed("render", 0)}), client(1, {timed("render", 0)})},
                  {client(1, {timed("render", second)}), client(1, {timed("render", second / 2)})},
                  50,
                  50,
                  {}},
             Case{"a counter that falls",
                  {client(1, {timed("render", second)})},
                  {client(1, {timed("render", second / 2)})},
                  0,
                  0,
                  {}},
             Case{"a client that came may be old",
                  {client(1, {timed("render", 0)})},
                  {client(1, {timed("render", 0)}), client(2, {timed("render", second)})},
                  0,
                  0,
                  {}},
             Case{"more than all of the time",
                  {client(1, {timed("render", 0)})},
                  {client(1, {timed("render", 9 * second)})},
                  100,
                  100,
                  {}},
             Case{"geometry sorted apart",
                  {client(1, {timed("vertex-tiler", 0), timed("fragment", 0)})},
                  {client(1, {timed("vertex-tiler", second), timed("fragment", second / 2)})},
                  50,
                  25,
                  50},
         }) {
        SCOPED_TRACE(c.teaches);
        DrmLoads loads;
        const auto first = loads.advance(c.before, 0);
        EXPECT_FALSE(first.at(0).busy) << "nothing to compare with yet";
        const auto next = loads.advance(c.after, 2);
        ASSERT_EQ(next.size(), 1u);
        EXPECT_EQ(next[0].busy, c.busy);
        EXPECT_EQ(next[0].renderer, c.renderer);
        EXPECT_EQ(next[0].tiler, c.tiler);
    }
}

TEST(DrmLoads, AFallenCounterCountsOnFromWhereItStood) {
    DrmLoads loads;
    loads.advance({client(1, {timed("render", 1000)})}, 0);
    loads.advance({client(1, {timed("render", 400)})}, 1);
    const auto load = loads.advance({client(1, {timed("render", 1200)})}, 1);
    EXPECT_DOUBLE_EQ(load[0].busy.value(), 200 * 100 / 1e9) << "not 800: those were counted before";
}

TEST(DrmLoads, GpusApart) {
    DrmLoads loads;
    loads.advance({client(1, {timed("render", 0)}), client(1, {timed("render", 0)}, "0000:03:00.0")}, 0);
    const auto next = loads.advance(
        {client(1, {timed("render", 0)}), client(1, {timed("render", 500'000'000)}, "0000:03:00.0")}, 1);
    ASSERT_EQ(next.size(), 2u);
    EXPECT_EQ(next[0].busy, 0);
    EXPECT_EQ(next[1].busy, 50);
}

std::string fdinfo(uint64_t client, uint64_t ns) {
    return "drm-driver:\ti915\ndrm-pdev:\t0000:00:02.0\ndrm-client-id:\t" + std::to_string(client) +
           "\ndrm-engine-render:\t" + std::to_string(ns) + " ns\ndrm-total-system:\t8 MiB\n";
}

TEST(DrmDescriptors, FindsKeepsAndForgets) {
    TempRoot machine;
    for (int pid = 100; pid < 130; ++pid) machine.link("proc/" + std::to_string(pid) + "/fd/0", "/dev/null");
    machine.link("proc/105/fd/7", "/dev/dri/renderD128").write("proc/105/fdinfo/7", fdinfo(1, 10));
    machine.link("proc/105/fd/8", "/dev/dri/card0").write("proc/105/fdinfo/8", fdinfo(2, 10));
    machine.folder("proc/bus").write("proc/uptime", "1 1\n");

    DrmDescriptors descriptors(machine.root());
    descriptors.update();
    EXPECT_EQ(descriptors.read().size(), 2u) << "the first call looks at all";

    machine.write("proc/105/fdinfo/8", "pos: 0\n"); // closed, and the number used anew
    EXPECT_EQ(descriptors.read().size(), 1u);
    machine.link("proc/120/fd/3", "/dev/dri/renderD128").write("proc/120/fdinfo/3", fdinfo(3, 10));
    int calls = 0;
    while (descriptors.read().size() < 2 && calls < 40) {
        descriptors.update();
        ++calls;
    }
    EXPECT_GT(calls, 1) << "a newcomer is found in its turn";
    EXPECT_LE(calls, 17);
    machine.remove("proc/105");
    EXPECT_EQ(descriptors.read().size(), 1u) << "a process that ended between two samples";
}

TEST(Gpu, LoadFromItsClients) {
    TempRoot machine;
    machine.copyFixture("gpu/a380")
        .write("sys/class/drm/card1/device/uevent",
               "DRIVER=i915\nPCI_ID=8086:56A5\nPCI_SLOT_NAME=0000:00:02.0\n");
    machine.link("proc/9/fd/7", "/dev/dri/renderD128").write("proc/9/fdinfo/7", fdinfo(1, 0));
    const auto readers = openGpuReaders(machine.root());
    std::vector<GpuReading> gpus;
    readGpus(*readers, 1'000'000'000, gpus);
    EXPECT_FALSE(gpus.at(0).busy);
    EXPECT_EQ(gpus[0].memAlloc, 8u << 20);
    machine.write("proc/9/fdinfo/7", fdinfo(1, 1'500'000'000));
    readGpus(*readers, 3'000'000'000, gpus);
    EXPECT_EQ(gpus.at(0).busy, 75);
    EXPECT_EQ(gpus[0].renderer, 75);
    EXPECT_FALSE(gpus[0].ownProcessesOnly);
    machine.remove("proc/9/fdinfo/7");
    readGpus(*readers, 5'000'000'000, gpus);
    EXPECT_EQ(gpus.at(0).busy, 0) << "its only client is gone";
    machine.remove("sys/class/drm/card1");
    readGpus(*readers, 7'000'000'000, gpus);
    EXPECT_TRUE(gpus.empty()) << "unplugged";
}

} // namespace
