#include "core/Battery.h"
#include "support/TempRoot.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace {

using nlohmann::json;

/// Judges one captured machine by what another program's tests say of it right after its start.
void compare(const sysinfo::BatteryInfo& battery, const json& expected) {
    for (const json& item : expected) {
        const auto what = item.at("what").get<std::string>();
        const json& value = item.at("value");
        const auto asks = [&](const char* property) { return what.find(property) != std::string::npos; };
        if (asks("'OnBattery'")) {
            EXPECT_EQ(battery.present && !battery.onAC, value.get<bool>());
        }
        if (!asks("(bat0_up") && !asks("display_property")) continue; // of a mouse, a keyboard, a UPS
        if (asks("'IsPresent'")) {
            EXPECT_EQ(battery.present, value.get<bool>());
        }
        if (asks("'Percentage'")) {
            EXPECT_EQ(battery.percent, static_cast<int>(value.get<double>()));
        }
        if (asks("'Voltage'")) {
            EXPECT_EQ(battery.voltage_mV, static_cast<int>(value.get<double>() * 1000));
        }
        if (asks("'Temperature'")) {
            EXPECT_DOUBLE_EQ(battery.temperatureC, value.get<double>());
        }
        // That a battery of unknown state at 99 % must be full is their guess, not ours.
        if (asks("'State'") && value == "UP_DEVICE_STATE_DISCHARGING") {
            EXPECT_FALSE(battery.onAC);
        }
    }
}

TEST(BatteryCaptures, AgreeWithPublishedExpectations) {
    const auto folder = quarn::testing::outsideCapture("upower");
    if (!folder) GTEST_SKIP() << "no captures beside the repository";
    int compared = 0;
    for (const auto& machine : std::filesystem::directory_iterator(*folder)) {
        std::ifstream file(machine.path() / "expected.json");
        if (!file) continue;
        SCOPED_TRACE(machine.path().filename().string());
        const json expected = json::parse(file);
        compare(sysinfo::readBattery(sysinfo::SystemRoot(machine.path().string())),
                expected.at("expected_after_start"));
        ++compared;
    }
    EXPECT_GT(compared, 30);
}

} // namespace
