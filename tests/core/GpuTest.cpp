#include "core/GpuStats.h"
#include "core/NeuralEngine.h"
#include "core/linux/GpuDevices.h"
#include "core/linux/GpuEnergy.h"
#include "core/linux/GpuNames.h"
#include "core/linux/NvidiaGpus.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using quarn::testing::TempRoot;

SystemRoot captured(std::string_view machine) {
    return SystemRoot(std::string(QUARN_FIXTURES) + "/gpu/" + std::string(machine));
}

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
    EXPECT_EQ(stats.device, 70);
    EXPECT_EQ(stats.renderer, 12);
    EXPECT_EQ(stats.tiler, -1);
    EXPECT_EQ(stats.memUsed, 101u);
    EXPECT_EQ(stats.memAlloc, 1000u);
}

TEST(Gpu, CapturedMachines) {
    const struct {
        const char *machine, *name, *driver, *slot, *teaches;
        double busy, used, total, watts; ///< -1 when absent
        uint32_t cores;
    } cases[] = {
        {"phoenix", "AMD GPU 15bf", "amdgpu", "0000:64:00.0",
         "compute units from the compute driver, found by bus address", 0, 1272893440, 4294967296, 3.103, 12},
        {"vangogh", "AMD GPU 163f", "amdgpu", "0000:04:00.0",
         "no memory files in this capture: absent, not 0", 0, -1, -1, 3.218, 8},
        {"rx580", "AMD GPU 67df", "amdgpu", "0000:09:00.0", "an empty product_name", 11, 536870912,
         4294967296, 41.045, 0},
        {"rx7900xtx", "AMD GPU 744c", "amdgpu", "0000:03:00.0", "a hwmon of its own", 3, -1, -1, 68, 0},
        {"hd7870", "AMD GPU 6818", "radeon", "0000:01:00.0", "measures nothing", -1, -1, -1, -1, 0},
        {"a380", "Intel GPU 56a5", "i915", "0000:0b:00.0", "known from the second sample on", -1, -1, -1, -1,
         0},
        {"tigerlake", "Intel GPU 9a49", "xe", "0000:00:02.0", "the same", -1, -1, -1, -1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.machine) + ": " + c.teaches);
        const auto gpus = GpuSampler(captured(c.machine)).sample();
        ASSERT_EQ(gpus.size(), 1u);
        const auto& gpu = gpus[0];
        EXPECT_EQ(gpu.device.name, c.name);
        EXPECT_EQ(gpu.device.driver, c.driver);
        EXPECT_EQ(gpu.device.slot, c.slot);
        EXPECT_EQ(gpu.device.cores, c.cores);
        EXPECT_EQ(gpu.busy.value_or(-1), c.busy);
        EXPECT_EQ(gpu.memUsed ? static_cast<double>(*gpu.memUsed) : -1, c.used);
        EXPECT_EQ(gpu.memAlloc ? static_cast<double>(*gpu.memAlloc) : -1, c.total);
        EXPECT_EQ(gpu.watts.value_or(-1), c.watts);
        EXPECT_FALSE(gpu.asleep);
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
    EXPECT_TRUE(gpus[0].asleep);
    EXPECT_EQ(gpus[0].busy, 0) << "the file says 11, and reading it would have woken the GPU";
    EXPECT_FALSE(gpus[0].memUsed || gpus[0].watts);
    EXPECT_EQ(gpus[0].device.name, "AMD GPU 67df");
    EnergySample energy;
    platform::GpuEnergy(machine.root(), nullptr).sample(1, energy);
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
    std::vector<std::string> names;
    for (const auto& gpu : platform::listGpus(machine.root())) names.push_back(gpu.slot + '=' + gpu.name);
    EXPECT_EQ(names, (std::vector<std::string>{"=Arm Mali", "0000:01:00.0=NVIDIA GeForce GTX 1650 Ti",
                                               "0000:03:00.0=GPU 2000"}))
        << "by card number; connectors, mere screens, a network port and the second listing of one are none";
}

TEST(GpuNames, FromTheTablesOfIds) {
    constexpr std::string_view pci =
        "# comment\n1001  Kolter Electronic\n\t9a49  not a GPU of Intel\n"
        "1002  Advanced Micro Devices, Inc. [AMD/ATI]\n"
        "\t744c  Navi 31 [Radeon RX 7900 XT/7900 XTX]\n\t\t1da2 e471  NITRO+\n"
        "1a03  ASPEED Technology, Inc.\n\t2000  ASPEED Graphics Family\n"
        "8086  Intel Corporation\n\t9a49  TigerLake-LP GT2 [Iris Xe Graphics]\nC 03  Display controller\n";
    EXPECT_EQ(platform::nameInPciIds(pci, 0x8086, 0x9a49), "Intel Iris Xe Graphics");
    EXPECT_EQ(platform::nameInPciIds(pci, 0x1a03, 0x2000), "ASPEED Technology, Inc. ASPEED Graphics Family");
    for (const auto& [vendor, device] : {std::pair{0x8086, 0x744c}, {0x1002, 0xe471}, {0x9999, 0x9a49}})
        EXPECT_EQ(platform::nameInPciIds(pci, vendor, device), "") << "another's, a variant, no maker";

    constexpr std::string_view amd =
        "# List of AMDGPU IDs\n1.0.0\n"
        "744C,\tC8,\tAMD Radeon RX 7900 XTX\n744C,\tCC,\tAMD Radeon RX 7900 XT\n";
    EXPECT_EQ(platform::nameInAmdgpuIds(amd, 0x744c, 0xcc), "AMD Radeon RX 7900 XT");
    EXPECT_EQ(platform::nameInAmdgpuIds(amd, 0x744c, 0x00), "");

    TempRoot machine;
    machine.copyFixture("gpu/rx7900xtx").write("usr/share/misc/pci.ids", pci);
    EXPECT_EQ(platform::listGpus(machine.root())[0].name, "AMD Radeon RX 7900 XT/7900 XTX");
    machine.write("usr/share/libdrm/amdgpu.ids", amd).write("sys/class/drm/card0/device/revision", "0xc8\n");
    EXPECT_EQ(platform::listGpus(machine.root())[0].name, "AMD Radeon RX 7900 XTX");
    machine.write("sys/class/drm/card0/device/product_name", "Radeon PRO W7900\n");
    EXPECT_EQ(platform::listGpus(machine.root())[0].name, "AMD Radeon PRO W7900");
}

EnergySample energyAt(platform::GpuEnergy& gpus, uint64_t seconds) {
    EnergySample channels;
    gpus.sample(seconds * 1'000'000'000, channels);
    return channels;
}

TEST(NeuralEngine, ByItsDriver) {
    TempRoot machine;
    EXPECT_FALSE(platform::findNeuralEngine(machine.root()));
    machine.folder("sys/class/accel/accel0")
        .write("sys/class/accel/accel1/device/uevent", "DRIVER=amdxdna\n");
    EXPECT_EQ(platform::findNeuralEngine(machine.root())->arch, "AMD XDNA") << "the first that has a driver";
    machine.write("sys/class/accel/accel0/device/uevent", "DRIVER=something\n");
    EXPECT_EQ(platform::findNeuralEngine(machine.root())->arch, "something");
}

TEST(GpuEnergy, OfDedicatedGpusOnly) {
    platform::GpuEnergy intel(captured("a380"), nullptr);
    const auto counted = energyAt(intel, 1);
    ASSERT_EQ(counted.size(), 1u);
    EXPECT_EQ(counted[0].energy, 25637161804);
    for (const char* inProcessor : {"phoenix", "vangogh"})
        EXPECT_TRUE(platform::GpuEnergy(captured(inProcessor), nullptr).empty())
            << "the processor's counters have it already";
}

TEST(GpuEnergy, PowerIsAddedUpButNotOverSleep) {
    TempRoot machine;
    machine.copyFixture("gpu/rx580");
    const std::string status = "sys/class/drm/card0/device/power/runtime_status";
    platform::GpuEnergy gpus(machine.root(), nullptr);
    const auto before = energyAt(gpus, 10);
    machine.write(status, "suspended\n");
    EXPECT_TRUE(energyAt(gpus, 20).empty());
    machine.write(status, "active\n");
    const auto after = energyAt(gpus, 1000);
    EXPECT_EQ(energyBetween(before, after)[0].energy, 0);
    EXPECT_EQ(energyBetween(after, energyAt(gpus, 1001))[0].energy, 41'045'000);
}

} // namespace
