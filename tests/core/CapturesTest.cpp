// Batteries of captured machines that the repository may not hold. They are read when they lie below
// build/captures, or where QUARN_CAPTURES says.
#include "core/Battery.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace {

using namespace sysinfo;
using nlohmann::json;
namespace fs = std::filesystem;

/// Judges one captured machine by what another program's tests say of it right after its start.
void compare(const BatteryInfo& battery, const json& expected) {
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

TEST(Captures, BatteriesAgreeWithPublishedExpectations) {
    const char* captures = std::getenv("QUARN_CAPTURES");
    const fs::path folder = fs::path(captures ? captures : QUARN_SOURCE_DIR "/build/captures") / "upower";
    if (!fs::exists(folder)) GTEST_SKIP() << "there is no " << folder;
    int compared = 0;
    for (const auto& machine : fs::directory_iterator(folder)) {
        std::ifstream file(machine.path() / "expected.json");
        if (!file) continue;
        SCOPED_TRACE(machine.path().filename().string());
        compare(readBattery(SystemRoot(machine.path().string())),
                json::parse(file).at("expected_after_start"));
        ++compared;
    }
    EXPECT_GT(compared, 30);
}

} // namespace
