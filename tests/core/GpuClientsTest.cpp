#include "core/linux/GpuClients.h"
#include "core/GpuStats.h"
#include "support/TempRoot.h"

#include <sstream>

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

/// Clients of GPUs: "1 engine-render:5 engine-video:0|2 engine-render:7" are two, with their numbers.
std::vector<DrmUsage> clients(const std::string& text) {
    std::vector<DrmUsage> usages;
    std::istringstream all(text);
    for (std::string client; std::getline(all, client, '|');) {
        std::istringstream words(client);
        std::string fdinfo = "drm-driver:i915\ndrm-pdev:0000:00:02.0", word;
        for (std::string key = "\ndrm-client-id:"; words >> word; key = "\ndrm-") fdinfo += key + word;
        usages.push_back(parseDrmUsage(fdinfo).value());
    }
    return usages;
}

TEST(DrmLoads, Shares) {
    const struct {
        const char *teaches, *before, *after;
        double busy, renderer, tiler; ///< -1 for none
    } cases[] = {
        {"time over time", "1 engine-render:0", "1 engine-render:1000000000", 50, 50, -1},
        {"two video engines of one name", "1 engine-video:0",
         "1 engine-video:1000000000 engine-capacity-video:2", 25, -1, -1},
        {"the busiest engine counts, clients of one engine add up",
         "1 engine-copy:0 engine-video:0|2 engine-video:0",
         "1 engine-copy:1000000000 engine-video:1000000000|2 engine-video:500000000", 75, -1, -1},
        {"cycles over cycles", "1 cycles-rcs:100 total-cycles-rcs:1000",
         "1 cycles-rcs:200 total-cycles-rcs:1400", 25, 25, -1},
        {"cycles over the highest clock", "1 cycles-rcs:0", "1 cycles-rcs:500 maxfreq-rcs:1000", 25, 25, -1},
        {"cycles and nothing to compare them with", "1 cycles-rcs:0", "1 cycles-rcs:500", -1, -1, -1},
        {"one client, many descriptors: the largest figure", "1 engine-render:0|1 engine-render:0",
         "1 engine-render:1000000000|1 engine-render:500000000", 50, 50, -1},
        {"a counter that falls", "1 engine-render:1000", "1 engine-render:500", 0, 0, -1},
        {"a client that came may be old", "1 engine-render:0", "1 engine-render:0|2 engine-render:1000000000",
         0, 0, -1},
        {"more than all of the time", "1 engine-render:0", "1 engine-render:9000000000", 100, 100, -1},
        {"geometry sorted apart", "1 engine-vertex-tiler:0 engine-fragment:0",
         "1 engine-vertex-tiler:1000000000 engine-fragment:500000000", 50, 25, 50},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.teaches);
        DrmLoads loads;
        EXPECT_FALSE(loads.advance(clients(c.before), 0).at(0).busy) << "nothing to compare with yet";
        const auto next = loads.advance(clients(c.after), 2);
        ASSERT_EQ(next.size(), 1u);
        EXPECT_EQ(next[0].busy.value_or(-1), c.busy);
        EXPECT_EQ(next[0].renderer.value_or(-1), c.renderer);
        EXPECT_EQ(next[0].tiler.value_or(-1), c.tiler);
    }
}

TEST(DrmLoads, AFallenCounterCountsOnFromWhereItStood) {
    DrmLoads loads;
    loads.advance(clients("1 engine-render:1000"), 0);
    loads.advance(clients("1 engine-render:400"), 1);
    const auto load = loads.advance(clients("1 engine-render:1200"), 1);
    EXPECT_DOUBLE_EQ(load[0].busy.value(), 200 * 100 / 1e9) << "not 800: those were counted before";
}

TEST(DrmLoads, GpusApart) {
    DrmLoads loads;
    loads.advance(clients("1 engine-render:0|1 pdev:0000:03:00.0 engine-render:0"), 0);
    const auto next =
        loads.advance(clients("1 engine-render:0|1 pdev:0000:03:00.0 engine-render:500000000"), 1);
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
    for (; descriptors.read().size() < 2 && calls < 40; ++calls) descriptors.update();
    EXPECT_GT(calls, 1) << "a newcomer is found in its turn";
    EXPECT_LE(calls, 17);
    machine.remove("proc/105");
    EXPECT_EQ(descriptors.read().size(), 1u) << "a process that ended between two samples";
}

TEST(Gpu, LoadFromItsClients) {
    TempRoot machine;
    machine.write("sys/class/drm/card1/device/uevent", "DRIVER=i915\nPCI_SLOT_NAME=0000:00:02.0\n");
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
