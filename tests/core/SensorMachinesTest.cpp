// Captured machines, and what each of them teaches.
#include "SensorSupport.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

using namespace quarn::testing;

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

} // namespace
