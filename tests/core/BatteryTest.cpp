#include "core/Battery.h"
#include "core/linux/PowerSupply.h"
#include "support/TempRoot.h"

#include <map>

namespace {

using namespace sysinfo;
using quarn::testing::TempRoot;

SystemRoot captured(std::string_view machine) {
    return SystemRoot(std::string(QUARN_FIXTURES) + "/battery/" + std::string(machine));
}

using Attributes = std::map<std::string, std::string, std::less<>>;

/// A battery whose driver offers `attributes` on top of the usual ones.
PowerSupply battery(const Attributes& attributes) {
    Attributes all{{"type", "Battery"}, {"present", "1"}};
    for (const auto& [key, value] : attributes) all[key] = value;
    return platform::describePowerSupply("BAT0", [&](std::string_view key) {
        const auto found = all.find(key);
        return found == all.end() ? std::string() : found->second;
    });
}

BatteryInfo derived(const Attributes& attributes) {
    const std::vector<PowerSupply> supplies{battery(attributes)};
    return deriveBattery(supplies);
}

PowerSupply mains(bool online) {
    PowerSupply supply;
    supply.kind = PowerSupply::Kind::external;
    supply.online = online;
    return supply;
}

TEST(Battery, CapturedMachines) {
    struct Case {
        const char *machine, *teaches;
        int percent;
        bool charging, onAC;
        int toEmpty, cycles, design, nominal, millivolts, milliamps;
    };
    for (const auto& c : {
             Case{"thinkpad-98", "energy in µWh becomes mAh at the design voltage; 0 cycles are not counted",
                  98, false, false, 614, -1, 4400, 4635, 12229, -395},
             Case{"thinkpad-81", "a model name that ends in unreadable characters", 81, false, false, 438, -1,
                  4400, 4173, 11660, -429},
             Case{"uevent-only", "no attribute files, no full capacity: the design capacity stands in", 30,
                  false, false, 129, -1, 7800, -1, 0, -1107},
         }) {
        SCOPED_TRACE(std::string(c.machine) + ": " + c.teaches);
        const auto info = readBattery(captured(c.machine));
        ASSERT_TRUE(info.present);
        EXPECT_TRUE(info.percentKnown);
        EXPECT_EQ(info.percent, c.percent);
        EXPECT_EQ(info.charging, c.charging);
        EXPECT_EQ(info.onAC, c.onAC);
        EXPECT_EQ(info.timeToEmptyMin, c.toEmpty);
        EXPECT_EQ(info.timeToFullMin, -1);
        EXPECT_EQ(info.cycleCount, c.cycles);
        EXPECT_EQ(info.designCapacity, c.design);
        EXPECT_EQ(info.nominalCapacity, c.nominal);
        EXPECT_EQ(info.voltage_mV, c.millivolts);
        EXPECT_EQ(info.amperage_mA, c.milliamps);
        EXPECT_EQ(info.temperatureC, 0);
    }
    EXPECT_EQ(readBattery(captured("thinkpad-81")).model, "LNV-45N1");
}

TEST(Battery, ATrackpadIsNotTheMachinesBattery) {
    const auto info = readBattery(captured("trackpad"));
    EXPECT_FALSE(info.present);
    EXPECT_EQ(info.percent, 0);
    EXPECT_EQ(info.timeToEmptyMin, -1);
    EXPECT_EQ(info.designCapacity, -1);
    EXPECT_FALSE(info.onAC) << "nothing is known of a machine without a battery";
}

TEST(Battery, ABatteryThatTellsNothingButItsStatus) {
    const auto info = readBattery(captured("not-charging"));
    EXPECT_TRUE(info.present);
    EXPECT_TRUE(info.onAC) << "it could not hold its charge otherwise";
    EXPECT_FALSE(info.charging);
    EXPECT_FALSE(info.percentKnown);
    EXPECT_EQ(info.percent, 0);
}

TEST(Battery, Charge) {
    struct Case {
        const char* teaches;
        Attributes attributes;
        std::optional<int> percent;
    };
    for (const auto& c : {
             Case{"measured against what fits in, rounded down",
                  {{"energy_now", "1500000"}, {"energy_full", "60000000"}, {"capacity", "7"}},
                  2},
             Case{"no `capacity`", {{"charge_now", "7875000"}, {"charge_full", "10500000"}}, 75},
             Case{"a full capacity of 0 is no capacity", {{"charge_now", "1"}, {"charge_full", "0"}}, {}},
             Case{"above 100 after calibration", {{"charge_now", "12"}, {"charge_full", "10"}}, 100},
             Case{"`capacity` above 100", {{"capacity", "104"}}, 100},
             Case{"no number", {{"capacity", "-NaN"}, {"charge_now", "-NaN"}}, {}},
             Case{"negative", {{"capacity", "-1"}}, {}},
             Case{"beyond any integer", {{"capacity", "99999999999999999999"}}, {}},
             Case{"only a level in words", {{"capacity_level", "Full"}}, 100},
             Case{"a level no battery has", {{"capacity_level", "Unknown"}}, {}},
             Case{"the largest figures do not overflow",
                  {{"energy_now", "9223372036854775807"}, {"energy_full", "9223372036854775807"}},
                  100},
         }) {
        SCOPED_TRACE(c.teaches);
        const auto info = derived(c.attributes);
        EXPECT_EQ(info.percentKnown, c.percent.has_value());
        EXPECT_EQ(info.percent, c.percent.value_or(0));
    }
}

TEST(Battery, CurrentAndPower) {
    struct Case {
        const char* teaches;
        Attributes attributes;
        int milliamps;
        double watts;
    };
    const auto at = [](const char* status, const char* current, const char* power) {
        return Attributes{
            {"status", status}, {"current_now", current}, {"power_now", power}, {"voltage_now", "10000000"}};
    };
    for (const auto& c : {
             Case{"a driver that reports no sign", at("Discharging", "500000", ""), -500, -5},
             Case{"a driver that reports one", at("Discharging", "-500000", ""), -500, -5},
             Case{"power negative while charging", at("Charging", "", "-5000000"), 500, 5},
             Case{"power 0 beside a current", at("Discharging", "500000", "0"), -500, -5},
             Case{"current 0 beside a power", at("Charging", "0", "5000000"), 500, 5},
             Case{"status unknown, off the mains", at("Unknown", "500000", ""), -500, -5},
             Case{"idle", at("Full", "0", ""), 0, 0},
         }) {
        SCOPED_TRACE(c.teaches);
        const auto info = derived(c.attributes);
        EXPECT_EQ(info.amperage_mA, c.milliamps);
        ASSERT_TRUE(info.watts);
        EXPECT_DOUBLE_EQ(*info.watts, c.watts);
    }
    EXPECT_FALSE(derived({{"status", "Discharging"}}).watts) << "no reading is not 0 W";
}

TEST(Battery, Times) {
    struct Case {
        const char* teaches;
        Attributes attributes;
        int toEmpty, toFull;
    };
    for (const auto& c : {
             Case{"charge over current, without a voltage",
                  {{"status", "Discharging"}, {"charge_now", "2000000"}, {"current_now", "-1000000"}},
                  120,
                  -1},
             Case{"what is missing over power",
                  {{"status", "Charging"}, {"energy_now", "10"}, {"energy_full", "30"}, {"power_now", "20"}},
                  -1,
                  60},
             Case{"the firmware knows better",
                  {{"status", "Discharging"},
                   {"time_to_empty_now", "5400"},
                   {"charge_now", "9"},
                   {"current_now", "1"}},
                  90,
                  -1},
             Case{"no current, no time",
                  {{"status", "Discharging"}, {"charge_now", "9"}, {"current_now", "0"}},
                  -1,
                  -1},
             Case{"weeks are no estimate",
                  {{"status", "Discharging"}, {"charge_now", "1000000"}, {"current_now", "1"}},
                  -1,
                  -1},
             Case{"full is neither", {{"status", "Full"}, {"charge_now", "9"}, {"current_now", "1"}}, -1, -1},
         }) {
        SCOPED_TRACE(c.teaches);
        const auto info = derived(c.attributes);
        EXPECT_EQ(info.timeToEmptyMin, c.toEmpty);
        EXPECT_EQ(info.timeToFullMin, c.toFull);
    }
}

TEST(Battery, ExternalPower) {
    struct Case {
        const char* teaches;
        const char* status;
        std::vector<PowerSupply> sources;
        bool onAC;
    };
    PowerSupply receiver = mains(true);
    receiver.peripheral = true;
    for (const auto& c : {
             Case{"the mains, while a weak adapter lets the battery drain",
                  "Discharging",
                  {mains(true)},
                  true},
             Case{"one of two USB-C ports", "Charging", {mains(false), mains(true)}, true},
             Case{"just unplugged", "Full", {mains(false)}, false},
             Case{"a port that does not show itself", "Charging", {mains(false)}, true},
             Case{"a full battery and nothing else to go by", "Full", {}, true},
             Case{"nothing known", "Unknown", {}, false},
             Case{"a charging mouse is not the mains", "Discharging", {receiver}, false},
         }) {
        auto supplies = c.sources;
        supplies.push_back(battery({{"status", c.status}}));
        EXPECT_EQ(deriveBattery(supplies).onAC, c.onAC) << c.teaches;
    }
}

TEST(Battery, SeveralBatteriesAreOne) {
    const Attributes first{{"status", "Not charging"},  {"energy_now", "20000000"},
                           {"energy_full", "20000000"}, {"energy_full_design", "24000000"},
                           {"voltage_now", "12000000"}, {"temp", "301"},
                           {"health", "Good"},          {"cycle_count", "12"}};
    Attributes second = first;
    second["status"] = "Discharging";
    second["energy_now"] = "10000000";
    second["energy_full"] = "40000000";
    second["power_now"] = "15000000";
    second["voltage_now"] = "10000000";
    second["temp"] = "-5";
    second["health"] = "Overheat";
    second["cycle_count"] = "800";
    Attributes bay{{"present", "0"}};
    const std::vector<PowerSupply> supplies{battery(first), battery(second), battery(bay)};

    const auto info = deriveBattery(supplies);
    EXPECT_EQ(info.count, 2u) << "an empty bay is no battery";
    EXPECT_EQ(info.percent, 50) << "by energy: the mean of 100 % and 25 % would be 62 %";
    EXPECT_EQ(info.timeToEmptyMin, 120) << "the idle battery's energy lasts as well";
    EXPECT_EQ(info.voltage_mV, 11000);
    EXPECT_EQ(info.nominalCapacity, 1667 + 4000);
    EXPECT_EQ(info.cycleCount, 800);
    EXPECT_DOUBLE_EQ(info.temperatureC, 30.1);
    EXPECT_EQ(info.health, "Overheat");

    const std::vector<PowerSupply> mixed{battery(first), battery({{"capacity", "20"}})};
    EXPECT_EQ(deriveBattery(mixed).percent, 60) << "no energy known: the mean";
    EXPECT_EQ(deriveBattery(mixed).designCapacity, -1) << "a part is not passed off as the whole";
}

TEST(Battery, FilesThatAreOddOrGone) {
    TempRoot machine;
    const std::string folder = "sys/class/power_supply/BAT0/";
    machine.write(folder + "type", "Battery\n")
        .write(folder + "energy_now", std::string("34710000\n") + std::string(4000, '\0'))
        .write(folder + "energy_full", "36000000\n")
        .write(folder + "temp", "")
        .link("sys/class/power_supply/BAT1", "../../devices/gone");
    const auto info = readBattery(machine.root());
    EXPECT_EQ(info.count, 1u) << "a battery pulled out between listing and reading";
    EXPECT_EQ(info.percent, 96) << "files padded with NULs";
    machine.remove("sys/class/power_supply");
    EXPECT_FALSE(readBattery(machine.root()).present);
}

TEST(Battery, FlatRecord) {
    BatteryInfo info;
    info.present = true;
    info.health = "A text that is longer than the record can hold";
    const SCBattery flat = flatBattery(info);
    EXPECT_STREQ(flat.health, "A text that is longer than the ");
    EXPECT_EQ(flat.cycleCount, -1);
}

} // namespace
