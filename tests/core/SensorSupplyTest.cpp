#include "core/linux/SensorSupply.h"

#include "SensorSupport.h"
#include "SupplyText.h"

#include <cmath>

namespace {

using namespace quarn::testing;
using namespace sysinfo::platform;

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
