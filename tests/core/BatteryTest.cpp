#include "core/Battery.h"
#include "SupplyText.h"
#include "support/Joined.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using namespace quarn::testing;

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
        const auto info = readBattery(SystemRoot(QUARN_FIXTURES "/battery/" + std::string(machine)));
        EXPECT_EQ(joined(info.present, info.percentKnown, info.percent, info.onAC, info.timeToEmptyMin,
                         info.cycleCount, info.designCapacity, info.nominalCapacity, info.voltage_mV,
                         info.amperage_mA),
                  shown)
            << machine << ": " << teaches;
        EXPECT_EQ(joined(info.timeToFullMin, info.temperatureC, info.charging), "-1|0|0") << machine;
    }
    EXPECT_EQ(readBattery(SystemRoot(QUARN_FIXTURES "/battery/thinkpad-81")).model, "LNV-45N1");
}

TEST(Battery, Charge) {
    const struct {
        const char *teaches, *attributes;
        std::optional<int> percent;
    } cases[] = {
        {"what fits in, rounded down", "energy_now=1500000;energy_full=60000000;capacity=7", 2},
        {"no `capacity`", "charge_now=7875000;charge_full=10500000", 75},
        {"a full capacity of 0 is no capacity", "charge_now=1;charge_full=0", {}},
        {"above 100 after calibration", "charge_now=12;charge_full=10", 100},
        {"`capacity` above 100", "capacity=104", 100},
        {"no number", "capacity=-NaN;charge_now=-NaN", {}},
        {"negative", "capacity=-1", {}},
        {"beyond any integer", "capacity=99999999999999999999", {}},
        {"only a level in words", "capacity_level=Full", 100},
        {"a level no battery has", "capacity_level=Unknown", {}},
        {"no overflow", "energy_now=9223372036854775807;energy_full=9223372036854775807", 100},
    };
    for (const auto& c : cases) {
        const auto info = derived(c.attributes);
        EXPECT_EQ(info.percentKnown, c.percent.has_value()) << c.teaches;
        EXPECT_EQ(info.percent, c.percent.value_or(0)) << c.teaches;
    }
}

TEST(Battery, CurrentAndPower) {
    const struct {
        const char *teaches, *attributes;
        int milliamps;
        std::optional<double> watts;
    } cases[] = {
        {"a driver that reports no sign", "status=Discharging;current_now=500000", -500, -5},
        {"a driver that reports one", "status=Discharging;current_now=-500000", -500, -5},
        {"power negative while charging", "status=Charging;power_now=-5000000", 500, 5},
        {"power 0 beside a current", "status=Discharging;current_now=500000;power_now=0", -500, -5},
        {"current 0 beside a power", "status=Charging;current_now=0;power_now=5000000", 500, 5},
        {"status unknown, off the mains", "status=Unknown;current_now=500000", -500, -5},
        {"idle", "status=Full;current_now=0", 0, 0},
        {"no reading is not 0 W", "status=Discharging", 0, {}},
    };
    for (const auto& c : cases) {
        const auto info = derived(std::string(c.attributes) + ";voltage_now=10000000");
        EXPECT_EQ(info.amperage_mA, c.milliamps) << c.teaches;
        EXPECT_EQ(info.watts, c.watts) << c.teaches;
    }
}

TEST(Battery, Times) {
    const struct {
        const char *teaches, *attributes;
        int toEmpty, toFull;
    } cases[] = {
        {"charge over current", "status=Discharging;charge_now=2000000;current_now=-1000000", 120, -1},
        {"gap over power", "status=Charging;energy_now=10;energy_full=30;power_now=20", -1, 60},
        {"firmware", "status=Discharging;time_to_empty_now=5400;charge_now=9;current_now=1", 90, -1},
        {"no current, no time", "status=Discharging;charge_now=9;current_now=0", -1, -1},
        {"weeks are no estimate", "status=Discharging;charge_now=1000000;current_now=1", -1, -1},
        {"full is neither", "status=Full;charge_now=9;current_now=1", -1, -1},
    };
    for (const auto& c : cases) {
        const auto info = derived(c.attributes);
        EXPECT_EQ(info.timeToEmptyMin, c.toEmpty) << c.teaches;
        EXPECT_EQ(info.timeToFullMin, c.toFull) << c.teaches;
    }
}

TEST(Battery, ExternalPower) {
    const auto plugged = supply("type=Mains;online=1"), unplugged = supply("type=Mains;online=0");
    const auto receiver = supply("type=Mains;online=1;scope=Device");
    const struct {
        const char *teaches, *status;
        std::vector<PowerSupply> sources;
        bool onAC;
    } cases[] = {
        {"the mains beside a draining battery", "Discharging", {plugged}, true},
        {"one of two USB-C ports", "Charging", {unplugged, plugged}, true},
        {"just unplugged", "Full", {unplugged}, false},
        {"a port that does not show itself", "Charging", {unplugged}, true},
        {"a full battery and nothing else to go by", "Full", {}, true},
        {"nothing known", "Unknown", {}, false},
        {"a charging mouse is not the mains", "Discharging", {receiver}, false},
    };
    for (const auto& c : cases) {
        auto supplies = c.sources;
        supplies.push_back(battery(std::string("status=") + c.status));
        EXPECT_EQ(deriveBattery(supplies).onAC, c.onAC) << c.teaches;
    }
}

TEST(Battery, SeveralBatteriesAreOne) {
    const auto first = battery("status=Not charging;energy_now=20000000;energy_full=20000000;temp=301;"
                               "energy_full_design=24000000;voltage_now=12000000;cycle_count=12;health=Good");
    const auto second = battery("status=Discharging;energy_now=10000000;energy_full=40000000;temp=-5;"
                                "energy_full_design=24000000;power_now=15000000;voltage_now=10000000;"
                                "cycle_count=800;health=Overheat");
    const auto info = deriveBattery(std::vector{first, second, battery("present=0")});
    EXPECT_EQ(info.count, 2u) << "an empty bay is no battery";
    EXPECT_EQ(info.percent, 50) << "by energy: the mean of 100 % and 25 % would be 62 %";
    EXPECT_EQ(info.timeToEmptyMin, 120) << "the idle battery's energy lasts as well";
    EXPECT_EQ(info.voltage_mV, 11000);
    EXPECT_EQ(info.nominalCapacity, 1667 + 4000);
    EXPECT_EQ(info.cycleCount, 800);
    EXPECT_DOUBLE_EQ(info.temperatureC, 30.1);
    EXPECT_EQ(info.health, "Overheat");

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

} // namespace
