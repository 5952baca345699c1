#include "core/HardwareInfo.h"
#include "core/CpuTopology.h"
#include "core/linux/HardwareTopology.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using quarn::testing::TempRoot;

constexpr uint64_t KiB = 1024, MiB = 1024 * KiB;

TEST(HardwareInfo, CapturedMachines) {
    const struct {
        const char *machine, *teaches, *model, *brand, *arch, *kernel;
        bool virtualises;
        uint32_t logical, cores, performance, efficiency;
        uint64_t l1i, l1d, l2, l2e, l3, clock;
    } cases[] = {
        {"hybrid-20", "two kinds of cores, told apart by their highest frequencies; half the threads",
         "HP EliteBook 840 14 inch G10 Notebook PC", "13th Gen Intel(R) Core(TM) i7-1370P", "x86_64",
         "Linux 6.1.0-13-amd64", true, 20, 14, 6, 8, 32 * KiB, 48 * KiB, 1280 * KiB, 2 * MiB, 24 * MiB,
         1'900'000'000},
        {"sparse-48", "eight last-level caches", "AMD DRACHMA", "AMD Engineering Sample", "x86_64", "", true,
         48, 48, 0, 0, 64 * KiB, 64 * KiB, 512 * KiB, 0, 8 * 5118 * KiB, 0},
        {"arm-128", "more CPUs than fit in one mask word; a processor known by its number", "Huawei XA320 V2",
         "Kunpeng-920", "aarch64", "Linux 5.15.0-rc1-00005-g4c1b4a4d90b6-dirty", false, 128, 128, 0, 0,
         64 * KiB, 64 * KiB, 512 * KiB, 0, 4 * 32 * MiB, 0},
        {"one-offline-16", "an offline CPU is not counted; a board without a product name",
         "TYAN Computer S4881", "Dual Core AMD Opteron(tm) Processor 865", "x86_64", "", false, 15, 15, 0, 0,
         64 * KiB, 64 * KiB, MiB, 0, 0, 0},
        {"arm-2", "no cache is described, no DMI", "ST-Ericsson MOP500 platform", "Cortex-A9", "armv7l", "",
         false, 2, 2, 0, 0, 0, 0, 0, 0, 0, 0},
        {"s390-20", "core numbers that repeat from book to book", "", "IBM/S390", "s390x", "", false, 20, 20,
         0, 0, 0, 0, 0, 0, 0, 0},
        {"four-sockets-40", "numbers interleaved over four packages; a clock only in the name",
         "Dell PowerEdge R910", "Intel(R) Xeon(R) CPU E7- 4870 @ 2.40GHz", "x86_64", "", true, 40, 40, 0, 0,
         32 * KiB, 32 * KiB, 256 * KiB, 0, 4 * 30 * MiB, 2'400'000'000},
        {"arm64-server", "no list of CPUs that are online", "", "Neoverse-N1", "aarch64", "", false, 1, 1, 0,
         0, 64 * KiB, 64 * KiB, MiB, 0, 32 * MiB, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.machine) + ": " + c.teaches);
        TempRoot root;
        root.unpack("hardware/" + std::string(c.machine) + ".tree");
        const auto info = readHardwareInfo(root.root());
        EXPECT_EQ(info.model, c.model);
        EXPECT_EQ(info.cpuBrand, c.brand);
        EXPECT_EQ(info.arch, c.arch);
        EXPECT_EQ(info.kernel, c.kernel);
        EXPECT_EQ(info.hvSupport, c.virtualises);
        EXPECT_FALSE(info.vmPresent);
        EXPECT_EQ((std::vector{info.ncpu, info.physCpu, info.perfCores, info.effCores}),
                  (std::vector{c.logical, c.cores, c.performance, c.efficiency}));
        EXPECT_EQ((std::vector{info.l1iCache, info.l1dCache, info.l2Cache, info.l2CacheE, info.l3Cache}),
                  (std::vector{c.l1i, c.l1d, c.l2, c.l2e, c.l3}));
        EXPECT_EQ(info.baseClockHz, c.clock);
    }
}

TEST(HardwareInfo, FirstCpuOfflineAndKindsNamedByTheirMonitors) {
    TempRoot root;
    root.unpack("hardware/hybrid-20.tree").files("sys/devices/system/cpu", "online=1-19");
    root.remove("sys/devices/system/cpu/cpu0/cache").remove("sys/devices/system/cpu/cpu0/topology");
    auto info = readHardwareInfo(root.root());
    EXPECT_EQ(info.ncpu, 19u);
    EXPECT_EQ(info.physCpu, 14u) << "its core goes on with the other thread";
    EXPECT_EQ(info.l1dCache, 48 * KiB);
    EXPECT_EQ(info.l3Cache, 24 * MiB);

    info = readHardwareInfo(root.files("sys/devices", "cpu_core/cpus=0-7;cpu_atom/cpus=8-19").root());
    EXPECT_EQ(info.perfCores, 4u);
    EXPECT_EQ(info.effCores, 10u);
}

TEST(CpuLayout, KindsOfCoresByWhatTheyCanDo) {
    const struct {
        const char* teaches;
        std::vector<uint64_t> capacities, frequencies;
        uint32_t performance, efficiency;
    } cases[] = {
        {"three tiers: only the lowest saves", {1024, 800, 800, 280, 280, 280}, {}, 3, 3},
        {"little cores at half the power", {1024, 1024, 485, 485}, {}, 2, 2},
        {"equal capacities", {1024, 1024}, {}, 0, 0},
        {"favoured cores are no other kind", {}, {5200, 5200, 5000, 5000}, 0, 0},
        {"frequencies, where no capacity is told", {}, {5000, 3900, 3900}, 1, 2},
        {"capacity before frequency", {1024, 1024}, {5000, 2000}, 0, 0},
        {"nothing", {}, {}, 0, 0},
    };
    for (const auto& c : cases) {
        std::vector<LogicalCpu> cpus(std::max(c.capacities.size(), c.frequencies.size()));
        for (size_t i = 0; i < cpus.size(); ++i) {
            cpus[i].core = std::to_string(i);
            if (i < c.capacities.size()) cpus[i].capacity = c.capacities[i];
            if (i < c.frequencies.size()) cpus[i].maxFreqKHz = c.frequencies[i];
        }
        const auto layout = deriveCpuLayout(cpus);
        EXPECT_EQ(layout.performance, c.performance) << c.teaches;
        EXPECT_EQ(layout.efficiency, c.efficiency) << c.teaches;
    }
}

TEST(CpuList, AnyText) {
    const std::pair<const char*, std::vector<uint32_t>> lists[] = {
        {"0-2,5,7-8", {0, 1, 2, 5, 7, 8}},
        {" 3 ", {3}},
        {"", {}},
        {"5-3", {}},
        {"1,x,2", {1}},
        {"0-4000000000", {}}, // must not fill the memory
    };
    for (const auto& [text, cpus] : lists) EXPECT_EQ(platform::parseCpuList(text), cpus) << text;
    EXPECT_EQ(platform::parseCacheSize("32M"), 32 * MiB);
    EXPECT_EQ(platform::parseCacheSize("K"), std::nullopt);
    EXPECT_EQ(platform::parseCacheSize("unknown"), std::nullopt);
}

} // namespace
