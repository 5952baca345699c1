#include "cli/SensorsCommand.h"

#include "core/SMC.h"
#include "support/Contains.h"
#include "support/TempRoot.h"

#include <nlohmann/json.hpp>

namespace {

using namespace quarn::cli;
using quarn::testing::contains;
using quarn::testing::TempRoot;
using sysinfo::SMC;
using sysinfo::SystemRoot;

std::vector<SensorSection> reportOf(const std::string& machine) {
    SMC smc(SystemRoot(QUARN_FIXTURES "/sensors/" + machine));
    return readSensorReport(smc);
}

TEST(SensorsCommand, SectionsByPartAndKind) {
    std::vector<std::string> titles;
    for (const auto& section : reportOf("eleven-chips")) {
        titles.push_back(std::string(section.title) + ' ' + std::to_string(section.rows.size()));
    }
    EXPECT_EQ(titles,
              (std::vector<std::string>{"CPU 10", "Mainboard 2", "Network 3", "Fans 3", "Voltages 2"}));
    EXPECT_TRUE(reportOf("no such machine").empty());
}

TEST(SensorsCommand, AlignedText) {
    EXPECT_EQ(sensorText(reportOf("ryzen"), Charset::utf8),
              "Sensor                           Value  Key   Limits\n"
              "\n"
              "CPU\n"
              "  CPU control value (k10temp)  33.2 °C  TCC1\n"
              "  CPU chiplet 1 (k10temp)      33.2 °C  TCC3\n"
              "\n"
              "NVMe disks\n"
              "  Composite (nvme)             35.9 °C  TNz1  max 81.9 °C, critical 84.9 °C\n"
              "  Sensor 1 (nvme)              35.9 °C  TNz2\n"
              "  Sensor 2 (nvme)              38.9 °C  TNz3\n");
}

TEST(SensorsCommand, ASleepingDeviceIsListedWithTheReason) {
    TempRoot root;
    const std::string device = "sys/devices/pci0000:00/0000:01:00.0";
    root.write(device + "/power/runtime_status", "suspended\n");
    root.write(device + "/hwmon/hwmon0/name", "amdgpu\n");
    root.write(device + "/hwmon/hwmon0/temp1_input", "50000\n");
    root.write(device + "/hwmon/hwmon0/temp1_label", "edge\n");
    root.link(device + "/hwmon/hwmon0/device", "../../../0000:01:00.0");
    root.link("sys/class/hwmon/hwmon0", "../../devices/pci0000:00/0000:01:00.0/hwmon/hwmon0");
    SMC smc(root.root());
    const auto report = readSensorReport(smc);
    const auto text = sensorText(report, Charset::utf8);
    EXPECT_TRUE(contains(text, "GPU edge (amdgpu)      —  "));
    EXPECT_TRUE(contains(text, "asleep, and not woken for a reading"));

    JsonWriter json;
    writeSensors(json, report);
    const auto sensor = nlohmann::json::parse(json.text()).at(0);
    EXPECT_TRUE(sensor.at("value").is_null());
    EXPECT_EQ(sensor.at("part"), "GPU");
    EXPECT_EQ(sensor.at("reason"), "asleep, and not woken for a reading");
}

TEST(SensorsCommand, JsonHasTheDriversFigures) {
    JsonWriter json;
    writeSensors(json, reportOf("disk-and-network"));
    const auto sensors = nlohmann::json::parse(json.text());
    ASSERT_EQ(sensors.size(), 5u);
    EXPECT_EQ(sensors[0].at("name"), "Composite (NVMe CT2000P3SSD8)");
    EXPECT_EQ(sensors[0].at("value"), 43.85);
    EXPECT_EQ(sensors[0].at("critical"), 94.85);
    EXPECT_TRUE(sensors[1].at("max").is_null());
    EXPECT_TRUE(sensors[0].at("reason").is_null());
}

} // namespace
