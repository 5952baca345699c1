#include "core/linux/HardwareIdentity.h"
#include "core/HardwareInfo.h"
#include "core/linux/HardwareCpuInfo.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo::platform;
using quarn::testing::TempRoot;

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
    const struct {
        const char *teaches, *file, *content;
        bool isVirtual;
    } cases[] = {
        {"the processor says so", "proc/cpuinfo", "flags\t\t: fpu vmx hypervisor\n", true},
        {"a real one", "proc/cpuinfo", "flags\t\t: fpu vmx\n", false},
        {"by its maker", "sys/class/dmi/id/sys_vendor", "QEMU\n", true},
        {"by its product", "sys/class/dmi/id/product_name", "Virtual Machine\n", true},
        {"a rented real machine", "sys/class/dmi/id/product_name", "m5.metal\n", false},
        {"a guest of Xen", "sys/hypervisor/type", "xen\n", true},
        {"its device tree", "proc/device-tree/hypervisor/compatible", "linux,kvm", true},
        {"a mainframe's guest", "proc/sysinfo", "VM00 Control Program: z/VM 6.1\n", true},
    };
    for (const auto& c : cases) {
        TempRoot root;
        root.write(c.file, c.content);
        EXPECT_EQ(identifyMachine(root.root()).virtualMachine, c.isVirtual) << c.teaches;
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
    EXPECT_EQ(machine.model, "Raspberry Pi 4 Model B Rev 1.4");
    EXPECT_EQ(machine.osVersion, "Debian \"12\"");
    EXPECT_EQ(machine.osBuild, "rolling");
    EXPECT_EQ(machine.kernel, "Linux 6.1.21-v8+");
    EXPECT_EQ(machine.arch, "aarch64");
    EXPECT_EQ(machine.hostname, "berry");
    EXPECT_EQ(machine.cpuBrand, "Cortex-X3, Cortex-A510");
    EXPECT_FALSE(machine.appleSilicon);
    EXPECT_FALSE(machine.hardwareVirtualisation);

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
