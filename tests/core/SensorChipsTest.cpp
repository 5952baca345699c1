// Chips that misbehave, sleep, come and go.
#include "SensorSupport.h"

#include <future>

namespace {

using namespace quarn::testing;
using sysinfo::SensorState;

/// Places chip `entry` with its `files` on the device `device` (below sys/devices) and returns its folder.
std::string place(TempRoot& root, const std::string& entry, const std::string& device,
                  const std::string& name, const std::string& files) {
    const std::string folder = "sys/devices/" + device + "/hwmon/" + entry;
    root.files(folder, "name=" + name + ';' + files).link(folder + "/device", "../..");
    root.link("sys/class/hwmon/" + entry, "../../devices/" + device + "/hwmon/" + entry);
    return folder;
}

/// A machine with one chip whose first temperature is watched.
struct OneChip : ::testing::Test {
    void open(const std::string& device, const std::string& name, const std::string& files,
              const std::string& deviceFiles = "") {
        place(root, "hwmon0", device, name, files);
        folder = "sys/devices/" + device;
        root.files(folder, deviceFiles);
        machine.emplace(root.root(), [this](auto& attribute, auto buffer, const auto& read) -> long {
            if (attribute.path.find("/temp1_") == std::string::npos) return read(attribute, buffer);
            asked.push_back(static_cast<double>(*machine->now) * 1e-9);
            onAsked();
            return isBroken ? -1 : read(attribute, buffer);
        });
    }
    size_t count() { return machine->temperatures().size(); }
    size_t countAfter(double seconds) {
        machine->pass(seconds);
        return count();
    }
    void lookEachSecond(int seconds, size_t expected) {
        asked.clear();
        for (int second = 0; second < seconds; ++second) {
            EXPECT_EQ(count(), expected) << second;
            machine->pass(1);
        }
    }

    TempRoot root;
    std::string folder;        ///< of the device
    std::vector<double> asked; ///< when, in seconds
    std::function<void()> onAsked = [] {};
    bool isBroken = false;
    std::optional<SensorMachine> machine;
};

TEST(SensorChips, OddAttributes) {
    TempRoot root;
    const auto folder = place(root, "hwmon0", "platform/board.1", "board",
                              "temp1_input=40000;temp1_label=CPU\x1b[31m socket;temp1_max=90000;"
                              "temp4_input=42000;temp4_enable=0;temp5_input=43000;temp5_fault=1;"
                              "temp6_input=-273150;temp7_input=65261850;temp8_input=hot;"
                              "temp70_input=47000;curr1_input=-1500;power1_input=9000000");
    root.write(folder + "/temp2_input", "").write(folder + "/temp3_input", std::string("41000\n\0\0\0", 9));
    SensorMachine machine(root.root());
    EXPECT_EQ(machine.named(machine.temperatures()),
              (Readings{{"CPU[31m socket (board)", 40}, {" (board)", 47}}));
    EXPECT_EQ(machine.temperatures().size(), 3u) << "1, padded 3 and 70";
    EXPECT_EQ(machine.of('I').begin()->second, -1.5);
    EXPECT_EQ(machine.of('P').begin()->second, 9);

    // A fault that goes away lets the sensor in.
    root.files(folder, "temp5_fault=0;temp2_input=44000");
    machine.pass(2);
    EXPECT_EQ(machine.temperatures().size(), 5u);
}

TEST_F(OneChip, AFailingSensorIsLeftAloneLongerAndLonger) {
    open("platform/board.1", "board", "temp1_input=40000;temp2_input=50000");
    isBroken = true;
    lookEachSecond(120, 1);
    EXPECT_EQ(asked.size(), 7u) << "after 0, 1, 3, 7, 15, 31 and 63 seconds";
    isBroken = false;
    EXPECT_EQ(countAfter(64), 2u);
    isBroken = true;
    EXPECT_EQ(countAfter(1), 1u) << "a value is not kept beyond a failure";
}

TEST(SensorChips, OneSweepReadsEachAttributeOnce) {
    TempRoot root;
    for (const std::string n : {"0", "1", "2"})
        place(root, "hwmon" + n, "platform/board." + n, "board", "temp1_input=40000;in0_input=1200");
    int reads = 0;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        ++reads;
        return read(attribute, buffer);
    });
    for (const int expected : {6, 12}) {
        machine.temperatures();
        machine.of('V');
        machine.of('F');
        EXPECT_EQ(reads, expected);
        machine.pass(1);
    }
}

TEST_F(OneChip, ASuspendedDeviceIsNotTouched) {
    open("pci0000:00/0000:01:00.0", "amdgpu", "temp1_input=60000;temp1_crit=100000",
         "power/runtime_status=suspended");
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(machine->smc.sensors().at(0).state, SensorState::asleep);
    EXPECT_TRUE(asked.empty());

    root.files(folder, "power/runtime_status=active");
    EXPECT_EQ(countAfter(1), 1u) << "it was asleep when the keys were enumerated first";
    root.files(folder, "power/runtime_status=suspended");
    asked.clear();
    EXPECT_EQ(countAfter(1), 0u);
    EXPECT_TRUE(asked.empty());
}

TEST_F(OneChip, ARotatingDiskIsAskedOnlyAfterItWorked) {
    open("pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0", "drivetemp", "temp1_input=35000",
         "model=WDC WD40 ;block/sda/queue/rotational=1;block/sda/stat= 10 0 80 5");
    onAsked = [this] { root.files(folder, "block/sda/stat= 12 0 80 5"); }; // a kernel that counts this too
    EXPECT_EQ(count(), 0u) << "it may be in standby";
    EXPECT_EQ(machine->smc.sensors().at(0).state, SensorState::idle);
    EXPECT_EQ(machine->smc.sensors().at(0).chip, "WDC WD40");
    root.files(folder, "block/sda/stat= 11 0 88 5");
    EXPECT_EQ(countAfter(1), 1u);
    EXPECT_EQ(countAfter(60), 1u) << "the last answer serves for minutes";
    EXPECT_EQ(asked.size(), 1u) << "nothing but the question itself went to the disk";
    EXPECT_EQ(countAfter(300), 0u);
}

TEST_F(OneChip, ASolidDiskAtRestIsAskedOnceAMinute) {
    open("pci0000:00/0000:02:00.0/nvme/nvme0", "nvme", "temp1_input=35000",
         "nvme0n1/queue/rotational=0;nvme0n1/stat= 10 0 80 5");
    lookEachSecond(120, 1);
    EXPECT_EQ(asked.size(), 2u);
    root.files(folder, "nvme0n1/stat= 11 0 88 5");
    count();
    EXPECT_EQ(asked.size(), 3u) << "at work";
}

TEST_F(OneChip, ADeviceThatSuspendsByItselfGetsTheTimeForIt) {
    open("pci0000:00/0000:01:00.0", "amdgpu", "temp1_input=60000",
         "power/runtime_status=active;power/control=auto;power/autosuspend_delay_ms=5000");
    const auto longestGap = [&] {
        double gap = 0;
        for (size_t i = 1; i < asked.size(); ++i) gap = std::max(gap, asked[i] - asked[i - 1]);
        return gap;
    };
    lookEachSecond(60, 1); // the last answer bridges the pause
    EXPECT_GT(longestGap(), 5);
    EXPECT_GT(asked.size(), 45u) << "a device that others use is read all the same";
    root.files(folder, "power/control=on");
    countAfter(30);
    lookEachSecond(60, 1);
    EXPECT_LT(longestGap(), 2) << "it never suspends";
}

TEST(SensorChips, ChipsComeAndGo) {
    TempRoot root;
    place(root, "hwmon0", "platform/coretemp.0", "coretemp", "temp1_input=50000");
    // An attribute of a device that is gone cannot be read through a descriptor kept from before.
    SensorMachine machine(root.root(), [](auto& attribute, auto buffer, const auto& read) -> long {
        return std::filesystem::exists(attribute.path) ? read(attribute, buffer) : -1;
    });
    EXPECT_EQ(machine.temperatures().size(), 1u);

    const auto plug = [&](const std::string& entry) {
        const std::string device = "pci0000:00/0000:02:00.0/nvme/nvme0";
        place(root, entry, device, "nvme", "temp1_input=38000");
        root.files("sys/devices/" + device, "serial=S4X1");
    };
    plug("hwmon1");
    EXPECT_EQ(machine.temperatures().size(), 1u) << "looked for only every ten seconds";
    machine.pass(10);
    const auto both = machine.temperatures();
    ASSERT_EQ(both.size(), 2u);

    root.remove("sys/class/hwmon/hwmon1").remove("sys/devices/pci0000:00");
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 1u) << "gone between two looks";
    machine.pass(10);
    EXPECT_EQ(machine.temperatures().size(), 1u);
    plug("hwmon5");
    machine.pass(10);
    EXPECT_EQ(machine.temperatures(), both) << "the same disk has the same key under another number";
    EXPECT_EQ(machine.smc.keys().size(), 2u) << "nothing was enumerated twice";
}

TEST(SensorChips, KeysDoNotDependOnTheOrderOfLoading) {
    const auto keysOf = [](const std::string& first, const std::string& second) {
        TempRoot root;
        place(root, first, "platform/coretemp.0", "coretemp", "temp1_input=50000");
        place(root, second, "platform/coretemp.1", "coretemp", "temp1_input=60000");
        return SensorMachine(root.root()).temperatures();
    };
    EXPECT_EQ(keysOf("hwmon0", "hwmon1"), keysOf("hwmon9", "hwmon2"));
}

TEST(SensorChips, TwoFacesOfOneDevice) {
    TempRoot root;
    for (const char* entry : {"hwmon2", "hwmon10"})
        place(root, entry, "platform/asus-nb-wmi", "asus", "temp1_input=40000");
    EXPECT_EQ(SensorMachine(root.root()).temperatures().size(), 2u);
}

TEST(SensorChips, APeripheralsBatteryIsNoSensorOfTheMachine) {
    TempRoot root;
    const std::string device = "pci0000:00/usb1/power_supply/hidpp_battery_0";
    place(root, "hwmon0", device, "hidpp_battery_0", "in0_input=3900");
    root.files("sys/devices/" + device, "scope=Device");
    EXPECT_TRUE(SensorMachine(root.root()).of('V').empty());
    root.files("sys/devices/" + device, "scope=System");
    EXPECT_EQ(SensorMachine(root.root()).of('V').begin()->first.substr(0, 2), "VB");
}

TEST(SensorChips, WholeMachinePowerFromItsOwnSensorFirst) {
    TempRoot root;
    root.files("sys/class/power_supply/BAT0", "type=Battery;status=Discharging;power_now=7000000");
    const auto meter =
        place(root, "hwmon0", "LNXSYSTM:00/ACPI000D:00", "power_meter", "power1_average=213000000");
    SensorMachine machine(root.root());
    EXPECT_EQ(machine.of('P'), (Readings{{"PSTR", 213}})) << "no second key for the same power";
    root.write(meter + "/power1_average", "");
    machine.pass(1);
    EXPECT_EQ(machine.sensors.value("PSTR"), 7);
}

/// A machine with two prompt chips and one that takes two seconds to answer, as a blocked thread does.
struct SlowChip : ::testing::Test {
    SlowChip() {
        place(root, "hwmon0", "platform/prompt.0", "prompt", "temp1_input=40000");
        place(root, "hwmon1", "platform/slow.0", "slow", "temp1_input=70000");
        place(root, "hwmon2", "platform/last.0", "zz", "temp1_input=45000");
        machine.emplace(root.root(), [this](auto& attribute, auto buffer, const auto& real) -> long {
            if (attribute.path.find("/hwmon1/") == std::string::npos) return real(attribute, buffer);
            ++asked;
            if (isSlow) {
                const auto gate = held; // this thread may outlive the test
                *clock += 2'000'000'000;
                gate.wait();
            }
            return real(attribute, buffer);
        });
        clock = machine->now;
    }

    TempRoot root;
    std::atomic<bool> isSlow = true;
    std::atomic<int> asked = 0;
    std::promise<void> release;
    std::shared_future<void> held = release.get_future().share();
    std::shared_ptr<std::atomic<uint64_t>> clock; ///< of the machine
    std::optional<SensorMachine> machine;
};

TEST_F(SlowChip, DelaysNobodyAndComesBack) {
    const Readings others = machine->temperatures();
    EXPECT_EQ(machine->named(others), (Readings{{" (prompt)", 40}, {" (zz)", 45}}));
    EXPECT_EQ(asked, 1) << "the sweep came back while the chip was still held";
    machine->pass(1);
    EXPECT_EQ(machine->temperatures(), others);
    EXPECT_EQ(asked, 1) << "nobody queues up behind a chip that is being read";

    isSlow = false;
    release.set_value();
    machine->smc.settle(std::chrono::minutes(1));
    machine->pass(1);
    EXPECT_EQ(machine->temperatures().size(), 3u) << "its first answer brought it among the keys";

    // Read apart until it was prompt three times in a row; its answer is kept in between.
    for (int sweep = 0; sweep < 8; ++sweep) {
        machine->pass(8);
        EXPECT_EQ(machine->temperatures().size(), 3u) << sweep;
        machine->smc.settle(std::chrono::minutes(1));
    }
    root.files("sys/devices/platform/slow.0/hwmon/hwmon1", "temp1_input=71000");
    machine->pass(1);
    EXPECT_EQ(machine->named(machine->temperatures()).at(" (slow)"), 71) << "read with the others again";
}

TEST_F(SlowChip, AnOldAnswerIsNotShownForEver) {
    isSlow = false;
    EXPECT_EQ(machine->temperatures().size(), 3u);
    isSlow = true;
    machine->pass(1);
    EXPECT_EQ(machine->temperatures().size(), 3u) << "the last answer is three seconds old";
    machine->pass(15);
    EXPECT_EQ(machine->temperatures().size(), 2u);
    release.set_value();
}

TEST_F(SlowChip, DoesNotHoldUpTheEndOfTheProgram) {
    machine->temperatures();
    machine.reset();
    EXPECT_EQ(asked, 1);
    release.set_value();
}

} // namespace
