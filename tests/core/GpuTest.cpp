#include "core/GpuStats.h"
#include "core/NeuralEngine.h"
#include "core/Support.h"
#include "core/linux/GpuClients.h"
#include "core/linux/GpuDevices.h"
#include "core/linux/GpuEnergy.h"
#include "core/linux/GpuNames.h"
#include "core/linux/NvidiaGpus.h"

#include <sstream>

namespace {

using namespace quarn::testing;

SystemRoot captured(const std::string& machine) { return capturedRoot("gpu/" + machine); }

TEST(GpuStats, MaximumOfSharesAndSumOfMemories) {
    EXPECT_EQ(combineGpus({}).device, -1);
    std::vector<GpuReading> gpus(3);
    gpus[0].busy = 40;
    gpus[0].memUsed = 100;
    gpus[0].memAlloc = 1000;
    gpus[1].busy = 70;
    gpus[1].renderer = 12;
    gpus[1].memUsed = 1;
    const auto stats = combineGpus(gpus);
    EXPECT_EQ(joined(stats.device, stats.renderer, stats.tiler, stats.memUsed, stats.memAlloc),
              "70|12|-1|101|1000");
}

TEST(Gpu, CapturedMachines) {
    const char* const cases[][3] = {
        {"phoenix", "compute units from the compute driver, found by bus address",
         "AMD GPU 15bf|amdgpu|0000:64:00.0|12|0|1272893440|4294967296|3.103|0"},
        {"vangogh", "no memory files in this capture: absent, not 0",
         "AMD GPU 163f|amdgpu|0000:04:00.0|8|0|-|-|3.218|0"},
        {"rx580", "an empty product_name",
         "AMD GPU 67df|amdgpu|0000:09:00.0|0|11|536870912|4294967296|41.045|0"},
        {"rx7900xtx", "a hwmon of its own", "AMD GPU 744c|amdgpu|0000:03:00.0|0|3|-|-|68|0"},
        {"hd7870", "measures nothing", "AMD GPU 6818|radeon|0000:01:00.0|0|-|-|-|-|0"},
        {"a380", "known from the second sample on", "Intel GPU 56a5|i915|0000:0b:00.0|0|-|-|-|-|0"},
        {"tigerlake", "the same", "Intel GPU 9a49|xe|0000:00:02.0|0|-|-|-|-|0"},
    };
    for (const auto& [machine, teaches, shown] : cases) {
        const auto gpus = GpuSampler(captured(machine)).sample();
        ASSERT_EQ(gpus.size(), 1u) << machine;
        const auto& [name, driver, slot, folder, vendor, number, revision, cores] = gpus[0].device;
        EXPECT_EQ(joined(name, driver, slot, cores, gpus[0].busy, gpus[0].memUsed, gpus[0].memAlloc,
                         gpus[0].watts, gpus[0].asleep),
                  shown)
            << machine << ": " << teaches;
    }
    GpuSampler two(captured("vega-and-intel"));
    two.sample();
    const auto stats = combineGpus(two.sample());
    EXPECT_EQ(stats.device, 4);
    EXPECT_EQ(stats.memUsed, 1490378752u);
    EXPECT_FALSE(two.sample()[1].busy) << "no process of this capture can be looked into";
}

TEST(Gpu, ASleepingOneIsNotRead) {
    TempRoot machine;
    machine.copyFixture("gpu/rx580");
    machine.write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
    const auto gpus = GpuSampler(machine.root()).sample();
    ASSERT_EQ(gpus.size(), 1u);
    EXPECT_EQ(joined(gpus[0].device.name, gpus[0].asleep, gpus[0].busy, gpus[0].memUsed, gpus[0].watts),
              "AMD GPU 67df|1|0|-|-")
        << "the file says that it is busy, and reading it would have woken the GPU";
    EnergySample energy;
    GpuEnergy(machine.root(), nullptr).sample(1, energy);
    EXPECT_TRUE(energy.empty());
}

TEST(Gpu, ListsWhatTheBusHas) {
    TempRoot machine;
    machine
        .files("sys/class/drm", "card0/device/uevent=DRIVER=simple-framebuffer;"
                                "card0-HDMI-A-1/status=connected;"
                                "card2/device/uevent=DRIVER=panfrost\nOF_COMPATIBLE_0=rockchip,rk3399-mali;"
                                "card10/device/uevent=DRIVER=nvidia\nPCI_ID=10DE:1F95\n"
                                "PCI_SLOT_NAME=0000:01:00.0")
        .files("sys/bus/pci/devices", "0000:01:00.0/class=0x030000;0000:02:00.0/class=0x020000;"
                                      "0000:03:00.0/class=0x030200;0000:03:00.0/vendor=0x1a03;"
                                      "0000:03:00.0/device=0x2000")
        .files("proc/driver/nvidia/gpus/0000:01:00.0", "information=Model: \t\t NVIDIA GeForce GTX 1650 Ti");
    EXPECT_EQ(joinedEach(listGpus(machine.root()), &GpuDevice::slot, &GpuDevice::name),
              "|Arm Mali 0000:01:00.0|NVIDIA GeForce GTX 1650 Ti 0000:03:00.0|GPU 2000 ")
        << "by card number; connectors, mere screens, a network port and the second listing of one are none";
}

TEST(GpuNames, FromTheTablesOfIds) {
    constexpr std::string_view pci =
        "# comment\n1001  Kolter Electronic\n\t9a49  not a GPU of Intel\n"
        "1002  Advanced Micro Devices, Inc. [AMD/ATI]\n"
        "\t744c  Navi 31 [Radeon RX 7900 XT/7900 XTX]\n\t\t1da2 e471  NITRO+\n"
        "1a03  ASPEED Technology, Inc.\n\t2000  ASPEED Graphics Family\n"
        "8086  Intel Corporation\n\t9a49  TigerLake-LP GT2 [Iris Xe Graphics]\nC 03  Display controller\n";
    EXPECT_EQ(nameInPciIds(pci, 0x8086, 0x9a49), "Intel Iris Xe Graphics");
    EXPECT_EQ(nameInPciIds(pci, 0x1a03, 0x2000), "ASPEED Technology, Inc. ASPEED Graphics Family");
    for (const auto& [vendor, device] : {std::pair{0x8086, 0x744c}, {0x1002, 0xe471}, {0x9999, 0x9a49}})
        EXPECT_EQ(nameInPciIds(pci, vendor, device), "") << "another's, a variant, no maker";

    constexpr std::string_view amd =
        "# List of AMDGPU IDs\n1.0.0\n"
        "744C,\tC8,\tAMD Radeon RX 7900 XTX\n744C,\tCC,\tAMD Radeon RX 7900 XT\n";
    EXPECT_EQ(nameInAmdgpuIds(amd, 0x744c, 0xcc), "AMD Radeon RX 7900 XT");
    EXPECT_EQ(nameInAmdgpuIds(amd, 0x744c, 0x00), "");

    TempRoot machine;
    machine.copyFixture("gpu/rx7900xtx").write("usr/share/misc/pci.ids", pci);
    EXPECT_EQ(listGpus(machine.root())[0].name, "AMD Radeon RX 7900 XT/7900 XTX");
    machine.write("usr/share/libdrm/amdgpu.ids", amd).write("sys/class/drm/card0/device/revision", "0xc8\n");
    EXPECT_EQ(listGpus(machine.root())[0].name, "AMD Radeon RX 7900 XTX");
    machine.write("sys/class/drm/card0/device/product_name", "Radeon PRO W7900\n");
    EXPECT_EQ(listGpus(machine.root())[0].name, "AMD Radeon PRO W7900");
}

EnergySample energyAt(GpuEnergy& gpus, uint64_t seconds) {
    EnergySample channels;
    gpus.sample(seconds * 1'000'000'000, channels);
    return channels;
}

TEST(NeuralEngine, ByItsDriver) {
    TempRoot machine;
    EXPECT_FALSE(findNeuralEngine(machine.root()));
    machine.folder("sys/class/accel/accel0")
        .write("sys/class/accel/accel1/device/uevent", "DRIVER=amdxdna\n");
    EXPECT_EQ(findNeuralEngine(machine.root())->arch, "AMD XDNA") << "the first that has a driver";
    machine.write("sys/class/accel/accel0/device/uevent", "DRIVER=something\n");
    EXPECT_EQ(findNeuralEngine(machine.root())->arch, "something");
}

TEST(GpuEnergy, OfDedicatedGpusOnly) {
    GpuEnergy intel(captured("a380"), nullptr);
    EXPECT_EQ(energyAt(intel, 1).at(0).energy, 25637161804);
    for (const char* inProcessor : {"phoenix", "vangogh"})
        EXPECT_TRUE(GpuEnergy(captured(inProcessor), nullptr).empty())
            << "the processor's counters have it already";
}

TEST(GpuEnergy, PowerIsAddedUpButNotOverSleep) {
    TempRoot machine;
    machine.copyFixture("gpu/rx580");
    const std::string status = "sys/class/drm/card0/device/power/runtime_status";
    GpuEnergy gpus(machine.root(), nullptr);
    const auto before = energyAt(gpus, 10);
    machine.write(status, "suspended\n");
    EXPECT_TRUE(energyAt(gpus, 20).empty());
    machine.write(status, "active\n");
    const auto after = energyAt(gpus, 1000);
    EXPECT_EQ(energyBetween(before, after)[0].energy, 0);
    EXPECT_EQ(energyBetween(after, energyAt(gpus, 1001))[0].energy, 41'045'000);
}

TEST(DrmUsage, ReadsEveryKindOfLine) {
    const auto usage = parseDrmUsage("pos:\t0\nflags:\t02400002\ndrm-driver:\txe\ndrm-pdev:\t0000:00:02.0\n"
                                     "drm-client-id:\t42\ndrm-cycles-rcs:\t28257900\n"
                                     "drm-total-cycles-rcs:\t7655183225\ndrm-engine-video:\t1234 ns\n"
                                     "drm-engine-capacity-video:\t2\ndrm-maxfreq-video:\t5 Hz\n"
                                     "drm-resident-vram0:\t2 MiB\ndrm-resident-system:\t1 KiB\n"
                                     "drm-total-system:\t12\ndrm-memory-system:\t99 MiB\n");
    ASSERT_TRUE(usage);
    EXPECT_EQ(joined(usage->driver, usage->slot, usage->clientId, usage->residentBytes, usage->totalBytes),
              "xe|0000:00:02.0|42|2098176|12")
        << "\"total-cycles-\" is no memory region; without a unit: bytes";
    EXPECT_EQ(joinedEach(usage->engines, &DrmEngine::name, &DrmEngine::cycles, &DrmEngine::totalCycles,
                         &DrmEngine::busyNs, &DrmEngine::capacity, &DrmEngine::maxHz),
              "rcs|28257900|7655183225|-|1|0 video|-|-|1234|2|5 ");
}

TEST(DrmUsage, OddText) {
    EXPECT_FALSE(parseDrmUsage(""));
    EXPECT_FALSE(parseDrmUsage("pos: 0\nflags: 02\neventfd-count: 0\n"));
    const auto odd =
        parseDrmUsage("drm-driver: i915\ndrm-client-id: x\ndrm-engine-render: -5 ns\n"
                      "drm-engine-capacity-render: 0\ndrm-memory-local: 99999999999999999999 KiB\n"
                      "drm-memory-system: 18446744073709551615 GiB\ndrm-engine-\n");
    ASSERT_TRUE(odd);
    EXPECT_EQ(joined(odd->clientId, odd->residentBytes, odd->engines[0].busyNs, odd->engines[0].capacity),
              "-|-|-|1")
        << "more bytes than 64 bits; never a division by 0";
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
    const char* const cases[][4] = {
        // before and after; shares of the busiest engine, drawing, geometry
        {"time over time", "1 engine-render:0", "1 engine-render:1000000000", "50|50|- "},
        {"two video engines of one name", "1 engine-video:0",
         "1 engine-video:1000000000 engine-capacity-video:2", "25|-|- "},
        {"the busiest engine counts, clients of one engine add up",
         "1 engine-copy:0 engine-video:0|2 engine-video:0",
         "1 engine-copy:1000000000 engine-video:1000000000|2 engine-video:500000000", "75|-|- "},
        {"cycles over cycles", "1 cycles-rcs:100 total-cycles-rcs:1000",
         "1 cycles-rcs:200 total-cycles-rcs:1400", "25|25|- "},
        {"cycles over the highest clock", "1 cycles-rcs:0", "1 cycles-rcs:500 maxfreq-rcs:1000", "25|25|- "},
        {"cycles and nothing to compare them with", "1 cycles-rcs:0", "1 cycles-rcs:500", "-|-|- "},
        {"one client, many descriptors: the largest figure", "1 engine-render:0|1 engine-render:0",
         "1 engine-render:1000000000|1 engine-render:500000000", "50|50|- "},
        {"a counter that falls", "1 engine-render:1000", "1 engine-render:500", "0|0|- "},
        {"a client that came may be old", "1 engine-render:0", "1 engine-render:0|2 engine-render:1000000000",
         "0|0|- "},
        {"more than all of the time", "1 engine-render:0", "1 engine-render:9000000000", "100|100|- "},
        {"GPUs apart", "1 engine-render:0|1 pdev:0000:03:00.0 engine-render:0",
         "1 engine-render:0|1 pdev:0000:03:00.0 engine-render:1000000000", "0|0|- 50|50|- "},
        {"geometry sorted apart", "1 engine-vertex-tiler:0 engine-fragment:0",
         "1 engine-vertex-tiler:1000000000 engine-fragment:500000000", "50|25|50 "},
    };
    for (const auto& [teaches, before, after, shares] : cases) {
        DrmLoads loads;
        EXPECT_FALSE(loads.advance(clients(before), 0).at(0).busy) << "nothing to compare with yet";
        EXPECT_EQ(
            joinedEach(loads.advance(clients(after), 2), &DrmLoad::busy, &DrmLoad::renderer, &DrmLoad::tiler),
            shares)
            << teaches;
    }
}

TEST(DrmLoads, AFallenCounterCountsOnFromWhereItStood) {
    DrmLoads loads;
    loads.advance(clients("1 engine-render:1000"), 0);
    loads.advance(clients("1 engine-render:400"), 1);
    const auto load = loads.advance(clients("1 engine-render:1200"), 1);
    EXPECT_DOUBLE_EQ(load[0].busy.value(), 200 * 100 / 1e9) << "not 800: those were counted before";
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
    const auto shownAt = [&](uint64_t second) {
        readGpus(*readers, second * 1'000'000'000, gpus);
        return joinedEach(gpus, &GpuReading::busy, &GpuReading::renderer, &GpuReading::memAlloc,
                          &GpuReading::ownProcessesOnly);
    };
    EXPECT_EQ(shownAt(1), "-|-|8388608|0 ");
    machine.write("proc/9/fdinfo/7", fdinfo(1, 1'500'000'000));
    EXPECT_EQ(shownAt(3), "75|75|8388608|0 ");
    machine.remove("proc/9/fdinfo/7");
    EXPECT_EQ(shownAt(5), "0|-|-|0 ") << "its only client is gone";
    machine.remove("sys/class/drm/card1");
    EXPECT_EQ(shownAt(7), "") << "unplugged";
}

} // namespace
