#include "core/linux/SensorSupply.h"

#include "SensorSupport.h"

#include <cmath>

namespace {

using namespace sysinfo::platform;
using quarn::testing::SensorMachine;
using quarn::testing::TempRoot;
using sysinfo::PowerSupply;

TEST(SensorSupply, WhatTheMachineDraws) {
    struct Case {
        const char* what;
        std::vector<PowerSupply> supplies;
        std::optional<double> draw;
        std::optional<double> input;
    };
    PowerSupply battery;
    battery.kind = PowerSupply::Kind::battery;
    battery.status = PowerSupply::Status::discharging;
    battery.powerNow = 12'000'000;
    battery.voltageNow = 11'500'000;
    battery.currentNow = 900'000;
    PowerSupply negative = battery, byCurrent = battery, silent = battery, charging = battery,
                mouse = battery;
    negative.powerNow = -12'000'000;
    byCurrent.powerNow = 0;
    byCurrent.currentNow = -1'000'000;
    silent.powerNow = silent.currentNow = {};
    charging.status = PowerSupply::Status::charging;
    mouse.peripheral = true;
    PowerSupply unplugged;
    unplugged.kind = PowerSupply::Kind::external;
    unplugged.online = false;
    PowerSupply plugged = unplugged;
    plugged.online = true;
    PowerSupply usb = plugged;
    usb.voltageNow = 20'000'000;
    usb.currentNow = 2'250'000;
    const Case cases[] = {
        {"a battery", {battery, unplugged}, 12, {}},
        {"a driver that signs its power", {negative}, 12, {}},
        {"power 0 beside a current", {byCurrent}, 11.5, {}},
        {"two batteries", {battery, byCurrent}, 23.5, {}},
        {"neither power nor current", {silent}, {}, {}},
        {"charging", {charging}, {}, {}},
        {"discharging beside a weak adapter", {battery, plugged}, {}, {}},
        {"an adapter that tells", {charging, usb}, {}, 45},
        {"a mouse", {mouse}, {}, {}},
        {"nothing", {}, {}, {}},
    };
    for (const Case& one : cases) {
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
    root.write("sys/class/powercap/intel-rapl:0/name", "package-0\n");
    root.write(zone + "/name", "psys\n").write(zone + "/energy_uj", "5000000\n");
    root.write(zone + "/max_energy_range_uj", "262143328850\n");
    SensorMachine machine(root.root());
    EXPECT_TRUE(std::isnan(machine.sensors.value("PSTR"))) << "one reading is no power";
    machine.pass(2);
    root.write(zone + "/energy_uj", "47000000\n");
    EXPECT_NEAR(machine.sensors.value("PSTR"), 21, 1e-4);
}

} // namespace
