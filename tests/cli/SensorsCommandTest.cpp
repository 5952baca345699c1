#include "cli/SensorsCommand.h"

#include "core/SMC.h"
#include "support/Contains.h"
#include "support/TempRoot.h"

#include <nlohmann/json.hpp>

namespace {

using namespace quarn;
using namespace quarn::cli;
using quarn::testing::contains;
using quarn::testing::TempRoot;
using sysinfo::SMC;

TEST(SensorsCommand, ASleepingDeviceIsListedWithTheReason) {
    TempRoot root;
    const std::string device = "sys/devices/pci0000:00/0000:01:00.0";
    root.files(device, "power/runtime_status=suspended");
    root.files(device + "/hwmon/hwmon0", "name=amdgpu;temp1_input=50000;temp1_label=edge");
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

} // namespace
