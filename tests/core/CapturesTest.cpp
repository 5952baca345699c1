// Batteries of captured machines that the repository may not hold. They are read when they lie below
// build/captures, or where QUARN_CAPTURES says.
#include "core/Battery.h"

#include <cmath>
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
    const struct {
        const char* property;
        double ours, scale;
    } known[] = {
        {"'OnBattery'", battery.present && !battery.onAC ? 1.0 : 0.0, 1}, // of the machine as a whole
        {"'IsPresent'", battery.present ? 1.0 : 0.0, 1},
        {"'Percentage'", static_cast<double>(battery.percent), 1},
        {"'Voltage'", static_cast<double>(battery.voltage_mV), 1000},
        {"'Temperature'", std::trunc(battery.temperatureC * 10), 10}};
    for (const json& item : expected) {
        const auto what = item.at("what").get<std::string>();
        const json& value = item.at("value");
        const auto asks = [&](const char* property) { return what.find(property) != std::string::npos; };
        const bool isItsBattery = asks("(bat0_up") || asks("display_property"); // not a mouse, a UPS
        for (const auto& [property, ours, scale] : known)
            if (asks(property) && (isItsBattery || property == known[0].property)) {
                const double theirs = value.is_boolean() ? value.get<bool>() : value.get<double>();
                EXPECT_EQ(ours, std::trunc(theirs * scale)) << what;
            }
        // That a battery of unknown state at 99 % must be full is their guess, not ours.
        EXPECT_FALSE(isItsBattery && asks("'State'") && value == "UP_DEVICE_STATE_DISCHARGING" &&
                     battery.onAC);
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
