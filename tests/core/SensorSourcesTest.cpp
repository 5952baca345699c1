// Captured machines, and what each of them teaches; then sources other than chips.
#include "SensorSupport.h"
#include "SupplyText.h"
#include "core/linux/SensorSupply.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

using namespace quarn::testing;
using namespace sysinfo::platform;

/// "label (chip) value, " of each, in order of the labels.
std::string listing(SensorMachine& machine, const Readings& readings) {
    std::ostringstream text;
    for (const auto& [name, value] : machine.named(readings)) text << name << ' ' << value << ", ";
    return text.str();
}

TEST(SensorMachines, ElevenChips) {
    SensorMachine machine(capturedSensors("eleven-chips"));
    const auto temperatures = machine.temperatures();
    // Two chips of one name are told apart by their devices; one without any name is listed all the same.
    EXPECT_EQ(
        listing(machine, temperatures),
        " (mt7996_phy0_0) 55,  (mt7996_phy0_1) 56,  (mt7996_phy0_2) 57, Core 0 (coretemp.0) 54, "
        "Core 0 (coretemp.1) 54, Core 1 (coretemp.0) 52, Core 1 (coretemp.1) 52, Core 2 (coretemp.0) 53, "
        "Core 2 (coretemp.1) 53, Core 3 (coretemp.0) 50, Core 3 (coretemp.1) 50, "
        "Physical id 0 (coretemp.0) 55, Physical id 0 (coretemp.1) 55, "
        "foosensor 1 (unnamed chip) 55, foosensor 2 (unnamed chip) 54, ");
    EXPECT_EQ(std::count_if(temperatures.begin(), temperatures.end(),
                            [](const auto& reading) { return reading.first.starts_with("TC"); }),
              10);
    // applesmc keeps its attributes in the device's folder, and a stopped fan is a reading.
    EXPECT_EQ(listing(machine, machine.of('F')),
              " (nct6779) 1098, Left side (applesmc) 0, Right side (applesmc) 1998, ");
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 0}, {"F1Ac", 1998}, {"F2Ac", 1098}}));
    // "intrusion0_alarm" begins as a voltage does.
    EXPECT_EQ(machine.of('V').size(), 2u);
    for (const auto& [key, value] : machine.of('V'))
        EXPECT_NEAR(value, key.ends_with('0') ? 0.792 : 1.024, 1e-6);
    EXPECT_EQ(machine.smc.keys().size(), 20u);
}

TEST(SensorMachines, ADiskAndANetworkCard) {
    SensorMachine machine(capturedSensors("disk-and-network"));
    EXPECT_EQ(listing(machine, machine.temperatures()),
              "Composite (NVMe CT2000P3SSD8) 43.85, Sensor 1 (NVMe CT2000P3SSD8) 43.85, "
              "Sensor 2 (NVMe CT2000P3SSD8) 45.85, Sensor 8 (NVMe CT2000P3SSD8) 43.85, loc1 (i350bb) 50, ");
    for (const auto& sensor : machine.smc.sensors()) {
        if (sensor.label == "Composite") {
            EXPECT_NEAR(sensor.max.value_or(0), 84.85, 1e-4);
            EXPECT_NEAR(sensor.crit.value_or(0), 94.85, 1e-4);
        } else if (sensor.label == "Sensor 1") {
            EXPECT_FALSE(sensor.max) << "65261850 says that there is no limit";
        }
    }
}

TEST(SensorMachines, EightGraphicsCards) {
    SensorMachine machine(capturedSensors("graphics-cards"));
    const auto temperatures = machine.temperatures();
    for (const auto& [key, value] : temperatures) EXPECT_TRUE(key.starts_with("TG")) << key;
    // The name of one is followed by a hundred blanks and NULs.
    EXPECT_EQ(
        listing(machine, temperatures),
        " (i915) 55,  (radeon) 27, edge (amdgpu 0000:02:00.0) 25, edge (amdgpu 0000:03:00.0) 44, "
        "edge (amdgpu 0000:04:00.0) 35, edge (amdgpu 0000:05:00.0) 53, edge (amdgpu 0000:06:00.0) 56, "
        "edge (amdgpu 0000:07:00.0) 38, junction (amdgpu 0000:04:00.0) 35, junction (amdgpu 0000:05:00.0) "
        "61, "
        "junction (amdgpu 0000:07:00.0) 38, mem (amdgpu 0000:04:00.0) 36, mem (amdgpu 0000:05:00.0) 68, "
        "mem (amdgpu 0000:07:00.0) 39, ");
    // One offers only an average; of another the present value comes before the average.
    EXPECT_EQ(
        listing(machine, machine.of('P')),
        "PPT (amdgpu 0000:02:00.0) 3.142, PPT (amdgpu 0000:03:00.0) 41.045, PPT (amdgpu 0000:04:00.0) 3, "
        "PPT (amdgpu 0000:05:00.0) 68, PPT (amdgpu 0000:07:00.0) 8, fastPPT (amdgpu 0000:06:00.0) 3.04, "
        "slowPPT (amdgpu 0000:06:00.0) 4.057, ");
    EXPECT_EQ(machine.of('F').size(), 5u) << "a fan whose control is off still turns";
}

TEST(SensorMachines, ADesktopWithoutDeviceFoldersAndOneWithThermalZonesOnly) {
    SensorMachine desktop(capturedSensors("ryzen")), zones(capturedSensors("two-zones"));
    EXPECT_EQ(listing(desktop, desktop.temperatures()),
              "Composite (nvme) 35.85, Sensor 1 (nvme) 35.85, Sensor 2 (nvme) 38.85, Tccd1 (k10temp) 33.25, "
              "Tctl (k10temp) 33.25, ");
    EXPECT_EQ(listing(zones, zones.temperatures()), "bcm2835_thermal (thermal zone thermal_zone0) 49.925, ")
        << "the other zone reads -44 degrees";
    EXPECT_TRUE(zones.temperatures().begin()->first.starts_with("TC")) << "the processor's own zone";
}

TEST(SensorMachines, ALaptopOnItsBattery) {
    SensorMachine machine(capturedSensors("laptop-supplies"));
    EXPECT_NEAR(machine.sensors.value("PSTR"), 4.83, 1e-6) << "asked before anything was enumerated";
    EXPECT_TRUE(std::isnan(machine.sensors.value("PDTR")));
}

const std::string folder = "sys/devices/platform/applesmc.768";

/// The Apple SMC driver's key files: a cursor that is written, and what lies under it.
struct AppleKeyFiles {
    struct Key {
        std::string name, type, data;
    };

    AppleKeyFiles() {
        root.files(folder, "key_at_index=0;name=applesmc;key_count=" + std::to_string(keys.size()))
            .files("sys/class/hwmon/hwmon0",
                   "name=applesmc;temp1_input=61000;temp1_label=TC0P;fan1_input=1800");
    }

    SensorMachine::Hook reader() {
        return [this](auto& attribute, auto buffer, const auto& read) -> long {
            const std::string name = attribute.path.substr(attribute.path.rfind('/') + 1);
            if (!name.starts_with("key_at_index")) return read(attribute, buffer);
            const Key& key = keys.at(cursor);
            const std::string text = name == "key_at_index_name"   ? key.name + "\n"
                                     : name == "key_at_index_type" ? key.type + "\n"
                                     : name == "key_at_index_data" ? key.data
                                                                   : std::to_string(key.data.size()) + "\n";
            if (name == "key_at_index_data" && isStolen) cursor = 0; // somebody else moves the cursor
            return text.copy(buffer.data(), buffer.size());
        };
    }
    std::function<bool(const std::string&, std::string_view)> writer() {
        return [this](const std::string& path, std::string_view text) {
            EXPECT_TRUE(path.ends_with("/key_at_index"));
            cursor = static_cast<size_t>(std::stoi(std::string(text)));
            return true;
        };
    }

    TempRoot root;
    size_t cursor = 0;
    bool isStolen = false;
    std::vector<Key> keys{{"#KEY", "ui32", std::string("\0\0\0\6", 4)},
                          {"TC0P", "sp78", std::string("\x2a\x80", 2)},
                          {"F0Ac", "fpe2", std::string("\x1f\x40", 2)},
                          {"PSTR", "flt ", std::string("\0\0\x28\x42", 4)},
                          {"RBr ", "ch8*", "j680"},
                          {"Huge", "ch8*", std::string(40, 'x')}};
};

TEST(AppleKeys, ComeBeforeTheHwmonFolderWithTheirOwnTypes) {
    AppleKeyFiles files;
    SensorMachine machine(files.root.root(), files.reader(), files.writer());
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 42.5}}));
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 2000}}));
    EXPECT_EQ(machine.sensors.value("PSTR"), 42);
    EXPECT_TRUE(std::isnan(machine.sensors.value("RBr "))) << "a text";

    files.isStolen = true;
    machine.pass(1);
    EXPECT_TRUE(std::isnan(machine.sensors.value("TC0P"))) << "data of another key";
    files.isStolen = false;
    machine.pass(2);
    EXPECT_EQ(machine.sensors.value("TC0P"), 42.5);
}

TEST(AppleKeys, AnOrdinaryUserGetsTheHwmonFolder) {
    AppleKeyFiles files;
    SensorMachine machine(files.root.root(), files.reader());
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 61}})) << "under the controller's own key";
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 1800}}));
}

TEST(SensorSupply, WhatTheMachineDraws) {
    const std::string all = "type=Battery;status=Discharging;power_now=12000000;voltage_now=11500000;"
                            "current_now=900000";
    const auto battery = supply(all), signedPower = supply("power_now=-12000000;" + all),
               byCurrent = supply("power_now=0;current_now=-1000000;" + all),
               silent = supply("power_now=;current_now=;" + all), charging = supply("status=Charging;" + all),
               mouse = supply("scope=Device;" + all), unplugged = supply("type=Mains;online=0"),
               plugged = supply("type=Mains;online=1"),
               usb = supply("type=USB;online=1;voltage_now=20000000;current_now=2250000");
    const struct {
        const char* what;
        std::vector<sysinfo::PowerSupply> supplies;
        std::optional<double> draw, input;
    } cases[] = {
        {"a battery", {battery, unplugged}, 12, {}},
        {"a driver that signs its power", {signedPower}, 12, {}},
        {"power 0 beside a current", {byCurrent}, 11.5, {}},
        {"two batteries", {battery, byCurrent}, 23.5, {}},
        {"neither power nor current", {silent}, {}, {}},
        {"charging", {charging}, {}, {}},
        {"discharging beside a weak adapter", {battery, plugged}, {}, {}},
        {"an adapter that tells", {charging, usb}, {}, 45},
        {"a mouse", {mouse}, {}, {}},
        {"nothing", {}, {}, {}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(batteryDraw(one.supplies), one.draw) << one.what;
        EXPECT_EQ(adapterInput(one.supplies), one.input) << one.what;
    }
}

TEST(SensorSupply, PlatformEnergyOverTime) {
    EXPECT_EQ(countedJoules(1'000'000, 3'500'000, 10'000'000), 2.5);
    EXPECT_EQ(countedJoules(9'000'000, 500'000, 10'000'000), 1.5) << "it started anew";
    EXPECT_EQ(countedJoules(9'000'000, 500'000, 0), std::nullopt) << "it was reset";

    TempRoot root;
    const std::string zone = "sys/class/powercap/intel-rapl:1";
    root.files("sys/class/powercap/intel-rapl:0", "name=package-0");
    root.files(zone, "name=psys;energy_uj=5000000;max_energy_range_uj=262143328850");
    SensorMachine machine(root.root());
    EXPECT_TRUE(std::isnan(machine.sensors.value("PSTR"))) << "one reading is no power";
    machine.pass(2);
    root.write(zone + "/energy_uj", "47000000\n");
    EXPECT_NEAR(machine.sensors.value("PSTR"), 21, 1e-4);
}

} // namespace
