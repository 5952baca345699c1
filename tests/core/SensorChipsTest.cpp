// Chips that misbehave, sleep, come and go.
#include "SensorSupport.h"

#include <future>
#include <latch>

namespace {

using namespace quarn::testing;
using sysinfo::SensorState;

/// Places chip `entry` on the device `device` (below sys/devices) and returns the chip's folder.
std::string place(TempRoot& root, const std::string& entry, const std::string& device,
                  const std::string& name) {
    const std::string folder = "sys/devices/" + device + "/hwmon/" + entry;
    root.write(folder + "/name", name + "\n");
    root.link(folder + "/device", "../..");
    root.link("sys/class/hwmon/" + entry, "../../devices/" + device + "/hwmon/" + entry);
    return folder;
}

std::map<std::string, SensorState> states(SensorMachine& machine) {
    std::map<std::string, SensorState> result;
    for (const auto& sensor : machine.smc.sensors()) result[sensor.chip] = sensor.state;
    return result;
}

TEST(SensorChips, OddAttributes) {
    TempRoot root;
    const auto folder = place(root, "hwmon0", "platform/board.1", "board");
    const std::pair<const char*, const char*> inputs[] = {
        {"temp1_input", "40000\n"},    {"temp2_input", ""},          {"temp3_input", "41000"},
        {"temp4_input", "42000\n"},    {"temp5_input", "43000\n"},   {"temp6_input", "-273150\n"},
        {"temp7_input", "65261850\n"}, {"temp8_input", "hot\n"},     {"temp70_input", "47000\n"},
        {"curr1_input", "-1500\n"},    {"power1_input", "9000000\n"}};
    for (const auto& [name, text] : inputs) root.write(folder + '/' + name, text);
    root.write(folder + "/temp3_input", std::string("41000\n\0\0\0", 9));
    root.write(folder + "/temp4_enable", "0\n").write(folder + "/temp5_fault", "1\n");
    root.write(folder + "/temp1_label", "CPU\x1b[31m socket\n").write(folder + "/temp1_max", "90000\n");
    SensorMachine machine(root.root());
    EXPECT_EQ(machine.named(machine.temperatures()),
              (Readings{{"CPU[31m socket (board)", 40}, {" (board)", 47}}));
    EXPECT_EQ(machine.temperatures().size(), 3u) << "1, padded 3 and 70";
    EXPECT_EQ(machine.of('I').begin()->second, -1.5);
    EXPECT_EQ(machine.of('P').begin()->second, 9);

    // A fault that goes away lets the sensor in.
    root.write(folder + "/temp5_fault", "0\n").write(folder + "/temp2_input", "44000\n");
    machine.pass(2);
    EXPECT_EQ(machine.temperatures().size(), 5u);
}

TEST(SensorChips, AFailingSensorIsLeftAloneLongerAndLonger) {
    TempRoot root;
    const auto folder = place(root, "hwmon0", "platform/board.1", "board");
    root.write(folder + "/temp1_input", "40000\n").write(folder + "/temp2_input", "50000\n");
    int tries = 0;
    bool broken = true;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) -> long {
        if (!attribute.path.ends_with("temp1_input")) return read(attribute, buffer);
        ++tries;
        return broken ? -1 : read(attribute, buffer);
    });
    for (int second = 0; second < 120; ++second) {
        EXPECT_EQ(machine.temperatures().size(), 1u);
        machine.pass(1);
    }
    EXPECT_EQ(tries, 7) << "after 0, 1, 3, 7, 15, 31 and 63 seconds";
    broken = false;
    machine.pass(64);
    EXPECT_EQ(machine.temperatures().size(), 2u);
    broken = true;
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 1u) << "a value is not kept beyond a failure";
}

TEST(SensorChips, OneSweepReadsEachAttributeOnce) {
    TempRoot root;
    for (int chip = 0; chip < 3; ++chip) {
        const auto n = std::to_string(chip);
        const auto folder = place(root, "hwmon" + n, "platform/board." + n, "board");
        root.write(folder + "/temp1_input", "40000\n").write(folder + "/in0_input", "1200\n");
    }
    int reads = 0;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        ++reads;
        return read(attribute, buffer);
    });
    machine.temperatures();
    machine.of('V');
    EXPECT_EQ(reads, 6);
    machine.pass(1);
    machine.temperatures();
    machine.of('V');
    machine.of('F');
    EXPECT_EQ(reads, 12);
}

TEST(SensorChips, ASuspendedDeviceIsNotTouched) {
    TempRoot root;
    const auto folder = place(root, "hwmon0", "pci0000:00/0000:01:00.0", "amdgpu");
    const std::string status = "sys/devices/pci0000:00/0000:01:00.0/power/runtime_status";
    root.write(folder + "/temp1_input", "60000\n").write(folder + "/temp1_crit", "100000\n");
    root.write(status, "suspended\n");
    int touched = 0;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        touched += attribute.path.find("/temp1_") != std::string::npos ? 1 : 0;
        return read(attribute, buffer);
    });
    EXPECT_TRUE(machine.temperatures().empty());
    EXPECT_EQ(states(machine), (std::map<std::string, SensorState>{{"amdgpu", SensorState::asleep}}));
    EXPECT_EQ(touched, 0);

    root.write(status, "active\n");
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 1u) << "it was asleep when the keys were enumerated first";
    const int before = touched;
    root.write(status, "suspended\n");
    machine.pass(1);
    EXPECT_TRUE(machine.temperatures().empty());
    EXPECT_EQ(touched, before);
}

TEST(SensorChips, ARotatingDiskIsAskedOnlyAfterItWorked) {
    TempRoot root;
    const std::string device = "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0";
    const auto folder = place(root, "hwmon0", device, "drivetemp");
    const std::string disk = "sys/devices/" + device + "/block/sda";
    root.write(folder + "/temp1_input", "35000\n").write("sys/devices/" + device + "/model", "WDC WD40 \n");
    root.write(disk + "/queue/rotational", "1\n").write(disk + "/stat", " 10 0 80 5\n");
    int asked = 0;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        if (attribute.path.ends_with("temp1_input")) {
            ++asked;
            root.write(disk + "/stat", " 12 0 80 5\n"); // a kernel that counts this question too
        }
        return read(attribute, buffer);
    });
    EXPECT_TRUE(machine.temperatures().empty()) << "it may be in standby";
    EXPECT_EQ(states(machine), (std::map<std::string, SensorState>{{"WDC WD40", SensorState::idle}}));
    root.write(disk + "/stat", " 11 0 88 5\n");
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 1u);
    machine.pass(60);
    EXPECT_EQ(machine.temperatures().size(), 1u) << "the last answer serves for minutes";
    EXPECT_EQ(asked, 1) << "nothing but the question itself went to the disk";
    machine.pass(300);
    EXPECT_TRUE(machine.temperatures().empty());
}

TEST(SensorChips, ASolidDiskAtRestIsAskedOnceAMinute) {
    TempRoot root;
    const std::string device = "pci0000:00/0000:02:00.0/nvme/nvme0";
    const auto folder = place(root, "hwmon0", device, "nvme");
    const std::string disk = "sys/devices/" + device + "/nvme0n1";
    root.write(folder + "/temp1_input", "35000\n");
    root.write(disk + "/queue/rotational", "0\n").write(disk + "/stat", " 10 0 80 5\n");
    int asked = 0;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        asked += attribute.path.ends_with("temp1_input") ? 1 : 0;
        return read(attribute, buffer);
    });
    for (int second = 0; second < 120; ++second) {
        EXPECT_EQ(machine.temperatures().size(), 1u);
        machine.pass(1);
    }
    EXPECT_EQ(asked, 2);
    root.write(disk + "/stat", " 11 0 88 5\n");
    machine.temperatures();
    EXPECT_EQ(asked, 3) << "at work";
}

TEST(SensorChips, ADeviceThatSuspendsByItselfGetsTheTimeForIt) {
    TempRoot root;
    const auto folder = place(root, "hwmon0", "pci0000:00/0000:01:00.0", "amdgpu");
    const std::string power = "sys/devices/pci0000:00/0000:01:00.0/power";
    root.write(folder + "/temp1_input", "60000\n").write(power + "/runtime_status", "active\n");
    root.write(power + "/control", "auto\n").write(power + "/autosuspend_delay_ms", "5000\n");
    std::vector<double> asked;
    std::shared_ptr<std::atomic<uint64_t>> clock;
    SensorMachine machine(root.root(), [&](auto& attribute, auto buffer, const auto& read) {
        if (attribute.path.ends_with("temp1_input")) asked.push_back(static_cast<double>(*clock) * 1e-9);
        return read(attribute, buffer);
    });
    clock = machine.now;
    const auto longestGap = [&] {
        double gap = 0;
        for (size_t i = 1; i < asked.size(); ++i) gap = std::max(gap, asked[i] - asked[i - 1]);
        return gap;
    };
    for (int second = 0; second < 60; ++second) {
        EXPECT_EQ(machine.temperatures().size(), 1u) << "the last answer bridges the pause";
        machine.pass(1);
    }
    EXPECT_GT(longestGap(), 5);
    EXPECT_GT(asked.size(), 45u) << "a device that others use is read all the same";

    root.write(power + "/control", "on\n");
    machine.pass(30);
    machine.temperatures();
    asked.clear();
    for (int second = 0; second < 60; ++second) {
        machine.temperatures();
        machine.pass(1);
    }
    EXPECT_LT(longestGap(), 2) << "it never suspends";
}

TEST(SensorChips, ChipsComeAndGo) {
    TempRoot root;
    root.write(place(root, "hwmon0", "platform/coretemp.0", "coretemp") + "/temp1_input", "50000\n");
    // An attribute of a device that is gone cannot be read through a descriptor kept from before.
    SensorMachine machine(root.root(), [](auto& attribute, auto buffer, const auto& read) -> long {
        return std::filesystem::exists(attribute.path) ? read(attribute, buffer) : -1;
    });
    EXPECT_EQ(machine.temperatures().size(), 1u);

    const auto plug = [&](const std::string& entry) {
        const std::string device = "pci0000:00/0000:02:00.0/nvme/nvme0";
        root.write(place(root, entry, device, "nvme") + "/temp1_input", "38000\n");
        root.write("sys/devices/" + device + "/serial", "S4X1\n");
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
        root.write(place(root, first, "platform/coretemp.0", "coretemp") + "/temp1_input", "50000\n");
        root.write(place(root, second, "platform/coretemp.1", "coretemp") + "/temp1_input", "60000\n");
        return SensorMachine(root.root()).temperatures();
    };
    EXPECT_EQ(keysOf("hwmon0", "hwmon1"), keysOf("hwmon9", "hwmon2"));
}

TEST(SensorChips, TwoFacesOfOneDevice) {
    TempRoot root;
    for (const char* entry : {"hwmon2", "hwmon10"}) {
        root.write(place(root, entry, "platform/asus-nb-wmi", "asus") + "/temp1_input",
                   entry == std::string("hwmon2") ? "40000\n" : "50000\n");
    }
    EXPECT_EQ(SensorMachine(root.root()).temperatures().size(), 2u);
}

TEST(SensorChips, APeripheralsBatteryIsNoSensorOfTheMachine) {
    TempRoot root;
    const std::string device = "pci0000:00/usb1/power_supply/hidpp_battery_0";
    root.write(place(root, "hwmon0", device, "hidpp_battery_0") + "/in0_input", "3900\n");
    root.write("sys/devices/" + device + "/scope", "Device\n");
    EXPECT_TRUE(SensorMachine(root.root()).of('V').empty());
    root.write("sys/devices/" + device + "/scope", "System\n");
    EXPECT_EQ(SensorMachine(root.root()).of('V').begin()->first.substr(0, 2), "VB");
}

TEST(SensorChips, WholeMachinePowerFromItsOwnSensorFirst) {
    TempRoot root;
    root.write("sys/class/power_supply/BAT0/type", "Battery\n");
    root.write("sys/class/power_supply/BAT0/status", "Discharging\n");
    root.write("sys/class/power_supply/BAT0/power_now", "7000000\n");
    const auto meter = place(root, "hwmon0", "LNXSYSTM:00/ACPI000D:00", "power_meter");
    root.write(meter + "/power1_average", "213000000\n");
    SensorMachine machine(root.root());
    EXPECT_EQ(machine.of('P'), (Readings{{"PSTR", 213}})) << "no second key for the same power";
    root.write(meter + "/power1_average", "");
    machine.pass(1);
    EXPECT_EQ(machine.sensors.value("PSTR"), 7);
}

/// A machine with one prompt chip and one that takes two seconds to answer, as a blocked thread does.
struct SlowChip : ::testing::Test {
    SlowChip() {
        root.write(place(root, "hwmon0", "platform/prompt.0", "prompt") + "/temp1_input", "40000\n");
        root.write(place(root, "hwmon1", "platform/slow.0", "slow") + "/temp1_input", "70000\n");
        root.write(place(root, "hwmon2", "platform/last.0", "zz") + "/temp1_input", "45000\n");
    }

    /// Runs on the reading thread: time passes, then the thread is held until the test lets go.
    long read(sysinfo::platform::KeptAttribute& attribute, std::span<char> buffer,
              const SensorMachine::Read& real) {
        if (attribute.path.find("/hwmon1/") == std::string::npos) return real(attribute, buffer);
        ++asked;
        if (isSlow) {
            const auto gate = held; // this thread may outlive the test
            *clock += 2'000'000'000;
            gate.wait();
        }
        return real(attribute, buffer);
    }

    TempRoot root;
    std::shared_ptr<std::atomic<uint64_t>> clock;
    std::atomic<bool> isSlow = true;
    std::atomic<int> asked = 0;
    std::promise<void> release;
    std::shared_future<void> held = release.get_future().share();
};

TEST_F(SlowChip, DelaysNobodyAndComesBack) {
    SensorMachine machine(root.root(), [this](auto& attribute, auto buffer, const auto& real) {
        return read(attribute, buffer, real);
    });
    clock = machine.now;

    const Readings others = machine.temperatures();
    EXPECT_EQ(machine.named(others), (Readings{{" (prompt)", 40}, {" (zz)", 45}}));
    EXPECT_EQ(asked, 1) << "the sweep came back while the chip was still held";
    machine.pass(1);
    EXPECT_EQ(machine.temperatures(), others);
    EXPECT_EQ(asked, 1) << "nobody queues up behind a chip that is being read";

    isSlow = false;
    release.set_value();
    machine.smc.settle(std::chrono::minutes(1));
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 3u) << "its first answer brought it among the keys";

    // Read apart until it was prompt three times in a row; its answer is kept in between.
    for (int sweep = 0; sweep < 8; ++sweep) {
        machine.pass(8);
        EXPECT_EQ(machine.temperatures().size(), 3u) << sweep;
        machine.smc.settle(std::chrono::minutes(1));
    }
    root.write("sys/devices/platform/slow.0/hwmon/hwmon1/temp1_input", "71000\n");
    machine.pass(1);
    EXPECT_EQ(machine.named(machine.temperatures()).at(" (slow)"), 71) << "read with the others again";
}

TEST_F(SlowChip, AnOldAnswerIsNotShownForEver) {
    isSlow = false;
    SensorMachine machine(root.root(), [this](auto& attribute, auto buffer, const auto& real) {
        return read(attribute, buffer, real);
    });
    clock = machine.now;
    EXPECT_EQ(machine.temperatures().size(), 3u);
    isSlow = true;
    machine.pass(1);
    EXPECT_EQ(machine.temperatures().size(), 3u) << "the last answer is three seconds old";
    machine.pass(15);
    EXPECT_EQ(machine.temperatures().size(), 2u);
    release.set_value();
}

TEST_F(SlowChip, DoesNotHoldUpTheEndOfTheProgram) {
    {
        SensorMachine machine(root.root(), [this](auto& attribute, auto buffer, const auto& real) {
            return read(attribute, buffer, real);
        });
        clock = machine.now;
        machine.temperatures();
    }
    EXPECT_EQ(asked, 1);
    release.set_value();
}

} // namespace
