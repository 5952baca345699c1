#include "core/Battery.h"
#include "core/Support.h"
#include "core/linux/PowerSupply.h"
#include "core/linux/SensorSupply.h"

namespace {

using namespace quarn::testing;

/// A power supply whose driver offers `attributes`, "type=Mains;online=1"; the first of a name counts.
PowerSupply supply(const std::string& attributes) {
    return platform::describePowerSupply("BAT0", [&](std::string_view key) {
        const std::string all = ';' + attributes + ';', start = ';' + std::string(key) + '=';
        const size_t at = all.find(start);
        if (at == all.npos) return std::string();
        return all.substr(at + start.size(), all.find(';', at + 1) - at - start.size());
    });
}

PowerSupply battery(const std::string& attributes) { return supply(attributes + ";type=Battery;present=1"); }

BatteryInfo derived(const std::string& attributes) { return deriveBattery(std::vector{battery(attributes)}); }

TEST(Battery, CapturedMachines) {
    // Present, charge, on the mains, minutes left, cycles, capacity by design and now, mV, mA.
    const char* const cases[][3] = {
        {"thinkpad-98", "µWh become mAh; 0 cycles are unknown", "1|1|98|0|614|-1|4400|4635|12229|-395"},
        {"thinkpad-81", "unreadable characters", "1|1|81|0|438|-1|4400|4173|11660|-429"},
        {"uevent-only", "without full capacity: by design", "1|1|30|0|129|-1|7800|-1|0|-1107"},
        {"not-charging", "holds its charge: plugged in", "1|0|0|1|-1|-1|-1|-1|0|0"},
        {"trackpad", "not the machine's own", "0|0|0|0|-1|-1|-1|-1|0|0"},
    };
    for (const auto& [machine, teaches, shown] : cases) {
        const auto info = readBattery(capturedRoot("battery/" + std::string(machine)));
        EXPECT_EQ(joined(info.present, info.percentKnown, info.percent, info.onAC, info.timeToEmptyMin,
                         info.cycleCount, info.designCapacity, info.nominalCapacity, info.voltage_mV,
                         info.amperage_mA),
                  shown)
            << machine << ": " << teaches;
        EXPECT_EQ(joined(info.timeToFullMin, info.temperatureC, info.charging), "-1|0|0") << machine;
    }
}

TEST(Battery, Charge) {
    const char* const cases[][3] = {
        // whether it is known, and the percentage
        {"what fits in, rounded down", "energy_now=1500000;energy_full=60000000;capacity=7", "1|2"},
        {"no `capacity`", "charge_now=7875000;charge_full=10500000", "1|75"},
        {"a full capacity of 0 is no capacity", "charge_now=1;charge_full=0", "0|0"},
        {"above 100 after calibration", "charge_now=12;charge_full=10", "1|100"},
        {"`capacity` above 100", "capacity=104", "1|100"},
        {"no number", "capacity=-NaN;charge_now=-NaN", "0|0"},
        {"negative", "capacity=-1", "0|0"},
        {"beyond any integer", "capacity=99999999999999999999", "0|0"},
        {"only a level in words", "capacity_level=Full", "1|100"},
        {"a level no battery has", "capacity_level=Unknown", "0|0"},
        {"no overflow", "energy_now=9223372036854775807;energy_full=9223372036854775807", "1|100"},
    };
    for (const auto& [teaches, attributes, shown] : cases) {
        const auto info = derived(attributes);
        EXPECT_EQ(joined(info.percentKnown, info.percent), shown) << teaches;
    }
}

TEST(Battery, CurrentAndPower) {
    const char* const cases[][3] = {
        // mA and W
        {"a driver that reports no sign", "status=Discharging;current_now=500000", "-500|-5"},
        {"a driver that reports one", "status=Discharging;current_now=-500000", "-500|-5"},
        {"power negative while charging", "status=Charging;power_now=-5000000", "500|5"},
        {"power 0 beside a current", "status=Discharging;current_now=500000;power_now=0", "-500|-5"},
        {"current 0 beside a power", "status=Charging;current_now=0;power_now=5000000", "500|5"},
        {"status unknown, off the mains", "status=Unknown;current_now=500000", "-500|-5"},
        {"idle", "status=Full;current_now=0", "0|0"},
        {"no reading is not 0 W", "status=Discharging", "0|-"},
    };
    for (const auto& [teaches, attributes, shown] : cases) {
        const auto info = derived(attributes + std::string(";voltage_now=10000000"));
        EXPECT_EQ(joined(info.amperage_mA, info.watts), shown) << teaches;
    }
}

TEST(Battery, Times) {
    const char* const cases[][3] = {
        // minutes to empty and to full
        {"charge over current", "status=Discharging;charge_now=2000000;current_now=-1000000", "120|-1"},
        {"gap over power", "status=Charging;energy_now=10;energy_full=30;power_now=20", "-1|60"},
        {"firmware", "status=Discharging;time_to_empty_now=5400;charge_now=9;current_now=1", "90|-1"},
        {"no current, no time", "status=Discharging;charge_now=9;current_now=0", "-1|-1"},
        {"weeks are no estimate", "status=Discharging;charge_now=1000000;current_now=1", "-1|-1"},
        {"full is neither", "status=Full;charge_now=9;current_now=1", "-1|-1"},
    };
    for (const auto& [teaches, attributes, shown] : cases) {
        const auto info = derived(attributes);
        EXPECT_EQ(joined(info.timeToEmptyMin, info.timeToFullMin), shown) << teaches;
    }
}

TEST(Battery, ExternalPower) {
    const auto plugged = supply("type=Mains;online=1"), unplugged = supply("type=Mains;online=0");
    const auto receiver = supply("type=Mains;online=1;scope=Device");
    const auto onAC = [](const std::string& status, std::vector<PowerSupply> supplies) {
        supplies.push_back(battery("status=" + status));
        return deriveBattery(supplies).onAC;
    };
    EXPECT_TRUE(onAC("Discharging", {plugged})) << "a weak adapter";
    EXPECT_TRUE(onAC("Charging", {unplugged, plugged})) << "one of two USB-C ports";
    EXPECT_FALSE(onAC("Full", {unplugged})) << "just unplugged";
    EXPECT_TRUE(onAC("Charging", {unplugged})) << "a port that does not show itself";
    EXPECT_TRUE(onAC("Full", {})) << "nothing else to go by";
    EXPECT_FALSE(onAC("Unknown", {}));
    EXPECT_FALSE(onAC("Discharging", {receiver})) << "a charging mouse is not the mains";
}

TEST(Battery, SeveralBatteriesAreOne) {
    const auto first = battery("status=Not charging;energy_now=20000000;energy_full=20000000;temp=301;"
                               "energy_full_design=24000000;voltage_now=12000000;cycle_count=12;health=Good");
    const auto second = battery("status=Discharging;energy_now=10000000;energy_full=40000000;temp=-5;"
                                "energy_full_design=24000000;power_now=15000000;voltage_now=10000000;"
                                "cycle_count=800;health=Overheat");
    const auto info = deriveBattery(std::vector{first, second, battery("present=0")});
    EXPECT_EQ(joined(info.count, info.percent, info.timeToEmptyMin, info.voltage_mV, info.nominalCapacity,
                     info.cycleCount, info.temperatureC, info.health),
              "2|50|120|11000|5667|800|30.1|Overheat")
        << "an empty bay is no battery; the charge goes by energy, for the mean would be 62 %; the idle "
           "battery's energy lasts as well";

    const auto mixed = deriveBattery(std::vector{first, battery("capacity=20")});
    EXPECT_EQ(mixed.percent, 60) << "no energy known: the mean";
    EXPECT_EQ(mixed.designCapacity, -1) << "a part is not passed off as the whole";
}

TEST(Battery, FilesThatAreOddOrGone) {
    TempRoot machine;
    machine.files("sys/class/power_supply/BAT0", "type=Battery;energy_full=36000000")
        .write("sys/class/power_supply/BAT0/energy_now", "34710000\n" + std::string(4000, '\0'))
        .write("sys/class/power_supply/BAT0/temp", "")
        .link("sys/class/power_supply/BAT1", "../../devices/gone");
    const auto info = readBattery(machine.root());
    EXPECT_EQ(info.count, 1u) << "a battery pulled out between listing and reading";
    EXPECT_EQ(info.percent, 96) << "files padded with NULs";
    machine.remove("sys/class/power_supply");
    EXPECT_FALSE(readBattery(machine.root()).present);
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
    const auto watts = [](const std::vector<PowerSupply>& supplies) {
        return joined(platform::batteryDraw(supplies), platform::adapterInput(supplies));
    };
    EXPECT_EQ(watts({battery, unplugged}), "12|-");
    EXPECT_EQ(watts({signedPower}), "12|-");
    EXPECT_EQ(watts({byCurrent}), "11.5|-") << "power 0 beside a current";
    EXPECT_EQ(watts({battery, byCurrent}), "23.5|-");
    EXPECT_EQ(watts({silent}), "-|-") << "neither power nor current";
    EXPECT_EQ(watts({charging}), "-|-");
    EXPECT_EQ(watts({battery, plugged}), "-|-") << "discharging beside a weak adapter";
    EXPECT_EQ(watts({charging, usb}), "-|45") << "an adapter that tells";
    EXPECT_EQ(watts({mouse}), "-|-");
    EXPECT_EQ(watts({}), "-|-");
}

} // namespace
