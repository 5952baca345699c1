// Captured machines, and what each of them teaches.
#include "SensorSupport.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace {

using namespace quarn::testing;

TEST(SensorMachines, ElevenChips) {
    SensorMachine machine(capturedSensors("eleven-chips"));
    const auto temperatures = machine.temperatures();
    // Two chips of one name are told apart by their devices; one without any name is listed all the same.
    EXPECT_EQ(machine.named(temperatures), (Readings{{"Physical id 0 (coretemp.0)", 55},
                                                     {"Core 0 (coretemp.0)", 54},
                                                     {"Core 1 (coretemp.0)", 52},
                                                     {"Core 2 (coretemp.0)", 53},
                                                     {"Core 3 (coretemp.0)", 50},
                                                     {"Physical id 0 (coretemp.1)", 55},
                                                     {"Core 0 (coretemp.1)", 54},
                                                     {"Core 1 (coretemp.1)", 52},
                                                     {"Core 2 (coretemp.1)", 53},
                                                     {"Core 3 (coretemp.1)", 50},
                                                     {" (mt7996_phy0_0)", 55},
                                                     {" (mt7996_phy0_1)", 56},
                                                     {" (mt7996_phy0_2)", 57},
                                                     {"foosensor 1 (unnamed chip)", 55},
                                                     {"foosensor 2 (unnamed chip)", 54}}));
    int ofCpu = 0;
    for (const auto& [key, value] : temperatures) ofCpu += key.starts_with("TC") ? 1 : 0;
    EXPECT_EQ(ofCpu, 10);
    // applesmc keeps its attributes in the device's folder, and a stopped fan is a reading.
    EXPECT_EQ(machine.named(machine.of('F')),
              (Readings{{"Left side (applesmc)", 0}, {"Right side (applesmc)", 1998}, {" (nct6779)", 1098}}));
    const auto fans = machine.of('F');
    EXPECT_EQ(fans, (Readings{{"F0Ac", 0}, {"F1Ac", 1998}, {"F2Ac", 1098}}));
    // "intrusion0_alarm" begins as a voltage does.
    EXPECT_EQ(machine.of('V').size(), 2u);
    for (const auto& [key, value] : machine.of('V'))
        EXPECT_NEAR(value, key.ends_with('0') ? 0.792 : 1.024, 1e-6);
    EXPECT_EQ(machine.smc.keys().size(), 20u);
}

TEST(SensorMachines, ADiskAndANetworkCard) {
    SensorMachine machine(capturedSensors("disk-and-network"));
    const auto byName = machine.named(machine.temperatures());
    ASSERT_EQ(byName.size(), 5u);
    EXPECT_NEAR(byName.at("Composite (NVMe CT2000P3SSD8)"), 43.85, 1e-4);
    EXPECT_EQ(byName.at("loc1 (i350bb)"), 50);
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
    EXPECT_EQ(temperatures.size(), 14u);
    for (const auto& [key, value] : temperatures) EXPECT_TRUE(key.starts_with("TG")) << key;
    const auto byName = machine.named(temperatures);
    // The name of this one is followed by a hundred blanks and NULs.
    EXPECT_EQ(byName.at("junction (amdgpu 0000:05:00.0)"), 61);
    EXPECT_EQ(byName.at("mem (amdgpu 0000:04:00.0)"), 36);
    EXPECT_EQ(byName.at(" (radeon)"), 27);
    EXPECT_EQ(byName.at(" (i915)"), 55);
    const auto power = machine.named(machine.of('P'));
    EXPECT_EQ(power.at("PPT (amdgpu 0000:05:00.0)"), 68) << "only an average is offered";
    EXPECT_NEAR(power.at("PPT (amdgpu 0000:02:00.0)"), 3.142, 1e-6) << "the present value before the average";
    EXPECT_NEAR(power.at("fastPPT (amdgpu 0000:06:00.0)"), 3.04, 1e-6);
    EXPECT_EQ(machine.of('F').size(), 5u) << "a fan whose control is off still turns";
}

TEST(SensorMachines, ADesktopWithoutDeviceFolders) {
    SensorMachine machine(capturedSensors("ryzen"));
    const auto byName = machine.named(machine.temperatures());
    EXPECT_EQ(byName.size(), 5u);
    EXPECT_EQ(byName.at("Tctl (k10temp)"), 33.25);
    EXPECT_EQ(byName.at("Tccd1 (k10temp)"), 33.25);
    EXPECT_NEAR(byName.at("Sensor 2 (nvme)"), 38.85, 1e-4);
}

TEST(SensorMachines, ThermalZonesWhereNothingElseIs) {
    SensorMachine machine(capturedSensors("two-zones"));
    EXPECT_EQ(machine.named(machine.temperatures()).size(), 1u) << "the other zone reads -44 degrees";
    EXPECT_NEAR(machine.temperatures().begin()->second, 49.925, 1e-4);
    EXPECT_TRUE(machine.temperatures().begin()->first.starts_with("TC")) << "the processor's own zone";
}

TEST(SensorMachines, ALaptopOnItsBattery) {
    SensorMachine machine(capturedSensors("laptop-supplies"));
    EXPECT_NEAR(machine.sensors.value("PSTR"), 4.83, 1e-6) << "asked before anything was enumerated";
    EXPECT_TRUE(std::isnan(machine.sensors.value("PDTR")));
}

TEST(SensorMachines, AServerOfFortyCores) {
    const char* captures = std::getenv("QUARN_CAPTURES");
    const std::string folder = captures ? captures : QUARN_SOURCE_DIR "/build/captures";
    if (!std::filesystem::exists(folder + "/pcp-xeon40")) GTEST_SKIP() << "the capture is not there";
    SensorMachine machine(sysinfo::SystemRoot(folder + "/pcp-xeon40"));
    const auto byName = machine.named(machine.temperatures());
    EXPECT_EQ(byName.size(), 22u);
    EXPECT_TRUE(byName.contains("Package id 1 (coretemp.1)"));
    EXPECT_EQ(machine.smc.keys().size(), 22u);
}

} // namespace
