#include "core/HardwareInfo.h"
#include "core/CpuTopology.h"
#include "core/Support.h"
#include "core/linux/HardwareCpuInfo.h"
#include "core/linux/HardwareIdentity.h"
#include "core/linux/HardwareTopology.h"

namespace {

using namespace quarn::testing;

constexpr uint64_t KiB = 1024, MiB = 1024 * KiB;

TEST(HardwareInfo, CapturedMachines) {
    // Model, processor, architecture, kernel; CPUs, cores, performance and efficiency cores, clock,
    // virtualisation; KiB of caches: L1 of instructions and data, L2 of both kinds of cores, L3.
    const char* const cases[][3] = {
        {"hybrid-20", "two kinds of cores, told apart by their highest frequencies; half the threads",
         "HP EliteBook 840 14 inch G10 Notebook PC|13th Gen Intel(R) Core(TM) i7-1370P|x86_64|"
         "Linux 6.1.0-13-amd64|20|14|6|8|1900000000|1|32|48|1280|2048|24576"},
        {"sparse-48", "eight last-level caches",
         "AMD DRACHMA|AMD Engineering Sample|x86_64||48|48|0|0|0|1|64|64|512|0|40944"},
        {"arm-128", "more CPUs than fit in one mask word; a processor known by its number",
         "Huawei XA320 V2|Kunpeng-920|aarch64|Linux 5.15.0-rc1-00005-g4c1b4a4d90b6-dirty|"
         "128|128|0|0|0|0|64|64|512|0|131072"},
        {"one-offline-16", "an offline CPU is not counted; a board without a product name",
         "TYAN Computer S4881|Dual Core AMD Opteron(tm) Processor 865|x86_64||15|15|0|0|0|0|64|64|1024|0|0"},
        {"arm-2", "no cache is described, no DMI",
         "ST-Ericsson MOP500 platform|Cortex-A9|armv7l||2|2|0|0|0|0|0|0|0|0|0"},
        {"s390-20", "core numbers that repeat from book to book", "|IBM/S390|s390x||20|20|0|0|0|0|0|0|0|0|0"},
        {"four-sockets-40", "numbers interleaved over four packages; a clock only in the name",
         "Dell PowerEdge R910|Intel(R) Xeon(R) CPU E7- 4870 @ 2.40GHz|x86_64||40|40|0|0|2400000000|1|"
         "32|32|256|0|122880"},
        {"arm64-server", "no list of CPUs that are online",
         "|Neoverse-N1|aarch64||1|1|0|0|0|0|64|64|1024|0|32768"},
    };
    for (const auto& [machine, teaches, shown] : cases) {
        SCOPED_TRACE(machine + std::string(": ") + teaches);
        TempRoot root;
        root.unpack("hardware/" + std::string(machine) + ".tree");
        const auto info = readHardwareInfo(root.root());
        EXPECT_EQ(joined(info.model, info.cpuBrand, info.arch, info.kernel, info.ncpu, info.physCpu,
                         info.perfCores, info.effCores, info.baseClockHz, info.hvSupport, info.l1iCache / KiB,
                         info.l1dCache / KiB, info.l2Cache / KiB, info.l2CacheE / KiB, info.l3Cache / KiB),
                  shown);
        EXPECT_FALSE(info.vmPresent);
    }
}

TEST(HardwareInfo, FirstCpuOfflineAndKindsNamedByTheirMonitors) {
    TempRoot root;
    root.unpack("hardware/hybrid-20.tree").files("sys/devices/system/cpu", "online=1-19");
    root.remove("sys/devices/system/cpu/cpu0/cache").remove("sys/devices/system/cpu/cpu0/topology");
    auto info = readHardwareInfo(root.root());
    EXPECT_EQ(joined(info.ncpu, info.physCpu, info.l1dCache / KiB, info.l3Cache / MiB), "19|14|48|24")
        << "the core of CPU 0 goes on with its other thread";
    info = readHardwareInfo(root.files("sys/devices", "cpu_core/cpus=0-7;cpu_atom/cpus=8-19").root());
    EXPECT_EQ(info.perfCores, 4u);
    EXPECT_EQ(info.effCores, 10u);
}

TEST(CpuLayout, KindsOfCoresByWhatTheyCanDo) {
    using List = std::vector<uint64_t>;
    const auto kinds = [](const List& capacities, const List& frequencies) {
        std::vector<LogicalCpu> cpus(std::max(capacities.size(), frequencies.size()));
        for (size_t i = 0; i < cpus.size(); ++i) {
            cpus[i].core = std::to_string(i);
            if (i < capacities.size()) cpus[i].capacity = capacities[i];
            if (i < frequencies.size()) cpus[i].maxFreqKHz = frequencies[i];
        }
        const auto layout = deriveCpuLayout(cpus);
        return joined(layout.performance, layout.efficiency);
    };
    EXPECT_EQ(kinds({1024, 800, 800, 280, 280, 280}, {}), "3|3") << "three tiers: only the lowest saves";
    EXPECT_EQ(kinds({1024, 1024, 485, 485}, {}), "2|2") << "little cores at half the power";
    EXPECT_EQ(kinds({1024, 1024}, {}), "0|0");
    EXPECT_EQ(kinds({}, {5200, 5200, 5000, 5000}), "0|0") << "favoured cores are no other kind";
    EXPECT_EQ(kinds({}, {5000, 3900, 3900}), "1|2") << "frequencies, where no capacity is told";
    EXPECT_EQ(kinds({1024, 1024}, {5000, 2000}), "0|0") << "capacity before frequency";
    EXPECT_EQ(kinds({}, {}), "0|0");
}

TEST(CpuList, AnyText) {
    using List = std::vector<uint32_t>;
    EXPECT_EQ(parseCpuList("0-2,5,7-8"), (List{0, 1, 2, 5, 7, 8}));
    EXPECT_EQ(parseCpuList(" 3 "), List{3});
    EXPECT_EQ(parseCpuList("1,x,2"), List{1});
    for (const char* none : {"", "5-3", "0-4000000000"}) EXPECT_EQ(parseCpuList(none), List{}) << none;
    EXPECT_EQ(parseCacheSize("32M"), 32 * MiB);
    EXPECT_EQ(parseCacheSize("K"), std::nullopt);
    EXPECT_EQ(parseCacheSize("unknown"), std::nullopt);
}

TEST(MachineModel, AsPeopleCallIt) {
    const std::pair<DmiTexts, const char*> cases[] = {
        {{"Apple Inc.", "MacBookAir7,2", "1.0", "MacBook Air", "", ""}, "MacBookAir7,2"},
        {{"LENOVO", "20L5CTO1WW", "ThinkPad T480", "ThinkPad T480", "", ""}, "Lenovo ThinkPad T480"},
        {{"Dell Inc.", "XPS 13 9310", "", "XPS", "", ""}, "Dell XPS 13 9310"},
        {{"HP", "HP EliteBook 840", "", "", "", ""}, "HP EliteBook 840"},
        {{"Micro-Star International Co., Ltd.", "MS-7C02", "", "", "", ""}, "Micro-Star MS-7C02"},
        {{"", "", "", "", "ASUSTeK COMPUTER INC.", "PRIME B450M-A"}, "ASUSTeK COMPUTER PRIME B450M-A"},
        {{"", "", "", "", "", ""}, ""},
    };
    for (const auto& [dmi, model] : cases) EXPECT_EQ(modelOfDmi(dmi), model);
}

TEST(MachineModel, FieldsThatNobodyFilled) {
    for (const char* text : {"To be filled by O.E.M.", "System Product Name", "Default string", " \n", "None",
                             "Not Specified", "0123456789"})
        EXPECT_EQ(dmiText(text), "") << text;
    EXPECT_EQ(dmiText("S4881\nomputer Corp\n"), "S4881") << "an older text behind a shorter new one";
    EXPECT_EQ(dmiText("Optiplex\xff 7010 "), "Optiplex 7010");
}

TEST(VirtualMachine, IsRecognised) {
    const char* const cases[][4] = {
        {"1", "the processor says so", "proc/cpuinfo", "flags\t\t: fpu vmx hypervisor\n"},
        {"0", "a real one", "proc/cpuinfo", "flags\t\t: fpu vmx\n"},
        {"1", "by its maker", "sys/class/dmi/id/sys_vendor", "QEMU\n"},
        {"1", "by its product", "sys/class/dmi/id/product_name", "Virtual Machine\n"},
        {"0", "a rented real machine", "sys/class/dmi/id/product_name", "m5.metal\n"},
        {"1", "a guest of Xen", "sys/hypervisor/type", "xen\n"},
        {"1", "its device tree", "proc/device-tree/hypervisor/compatible", "linux,kvm"},
        {"1", "a mainframe's guest", "proc/sysinfo", "VM00 Control Program: z/VM 6.1\n"},
    };
    for (const auto& [isVirtual, teaches, file, content] : cases) {
        TempRoot root;
        root.write(file, content);
        EXPECT_EQ(joined(identifyMachine(root.root()).virtualMachine), isVirtual) << teaches;
    }
    TempRoot dom0;
    dom0.write("sys/hypervisor/type", "xen\n").write("proc/xen/capabilities", "control_d\n");
    EXPECT_FALSE(identifyMachine(dom0.root()).virtualMachine) << "the domain that drives the hardware";
}

TEST(MachineIdentity, NamesFromTheirFiles) {
    TempRoot root;
    root.write("proc/device-tree/model", std::string("Raspberry Pi 4 Model B Rev 1.4\0", 31))
        .write("usr/lib/os-release", "NAME=x\nPRETTY_NAME=\"Debian \\\"12\\\"\"\nBUILD_ID='rolling'\n")
        .files("proc/sys/kernel", "osrelease=6.1.21-v8+;arch=aarch64")
        .files("etc", "hostname=berry")
        .write("proc/cpuinfo", "processor: 0\nCPU implementer: 0x41\nCPU part: 0xd46\n"
                               "processor: 1\nCPU implementer: 0x41\nCPU part: 0xd4e\n");
    const auto machine = identifyMachine(root.root());
    EXPECT_EQ(joined(machine.model, machine.osVersion, machine.osBuild, machine.kernel, machine.arch,
                     machine.hostname, machine.cpuBrand, machine.appleSilicon,
                     machine.hardwareVirtualisation),
              "Raspberry Pi 4 Model B Rev 1.4|Debian \"12\"|rolling|Linux 6.1.21-v8+|aarch64|berry|"
              "Cortex-X3, Cortex-A510|0|0");
    root.write("proc/device-tree/compatible", std::string("apple,j313\0apple,t8103\0apple,arm-platform", 42))
        .write("dev/kvm", "");
    EXPECT_TRUE(identifyMachine(root.root()).appleSilicon);
    EXPECT_TRUE(identifyMachine(root.root()).hardwareVirtualisation);
    EXPECT_EQ(identifyMachine(TempRoot().root()).model, "");
}

TEST(CpuInfo, NamesOfManyArchitectures) {
    const char* const names[][2] = {
        {"cpu\t\t: POWER7 (architected), altivec supported\n", "POWER7 (architected), altivec supported"},
        {"uarch\t\t: sifive,u74-mc\nisa\t: rv64imafdc\n", "sifive,u74-mc"},
        {"model name\t: AMD   Ryzen 7\nmodel name\t: other\n", "AMD Ryzen 7"},
        {"CPU implementer: 0x99\nCPU part: 0x1\nmodel name: ARMv8\n", "ARMv8"},
        {"no colon at all", ""},
    };
    for (const auto& [text, name] : names) EXPECT_EQ(processorName(parseCpuInfo(text)), name);
    EXPECT_EQ(clockOfName("Xeon @ 3.00GHz"), 3'000'000'000u);
    EXPECT_EQ(clockOfName("Atom @ 800MHz"), 800'000'000u);
    for (const char* name : {"Ryzen", "x @ GHz", "x @ -1GHz", "x @ nanGHz", "@"})
        EXPECT_EQ(clockOfName(name), 0u);
}

} // namespace
