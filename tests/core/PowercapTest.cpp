#include "core/linux/Powercap.h"
#include "core/IOReport.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;
using quarn::testing::TempRoot;

constexpr uint64_t range = 262'143'328'850; // µJ, of a real processor

/// A small machine with power-capping zones, whose counters a test moves.
struct Zones : TempRoot {
    Zones& zone(const std::string& id, const std::string& name, uint64_t energy, uint64_t wrapsAt = range) {
        files(path(id), "name=" + name + ";max_energy_range_uj=" + std::to_string(wrapsAt));
        return set(id, std::to_string(energy));
    }
    Zones& set(const std::string& id, const std::string& energy) {
        write(path(id) + "energy_uj", energy + '\n');
        return *this;
    }
    /// Makes reading fail, as it does for ordinary users (who these tests may not be).
    Zones& deny(const std::string& id) {
        remove(path(id) + "energy_uj").folder(path(id) + "energy_uj");
        return *this;
    }
    static std::string path(const std::string& id) { return "sys/class/powercap/" + id + '/'; }
};

EnergySample sampleAt(Powercap& powercap, double seconds) {
    EnergySample channels;
    powercap.sample(static_cast<uint64_t>(seconds * 1e9), channels);
    return channels;
}

TEST(EnergyCounter, WrapsAndResets) {
    const struct {
        const char* teaches;
        uint64_t before, after, range;
        double seconds;
        uint64_t total;
        uint32_t epoch;
    } cases[] = {
        {"counts", 1000, 1500, range, 1, 500, 0},
        {"wraps", range - 20'000'000, 30'000'000, range, 1, 50'000'000, 0},
        {"was set back: 100 kW would be no wrap", range / 2, 0, range, 1, 0, 1},
        {"was left so long that it may have wrapped unseen", 1000, 5000, range, 600, 0, 1},
        {"was left long, but has a long range", 1000, 5000, 262'143'328'850'000, 600, 4000, 0},
        {"falls without a range", 1000, 500, 0, 1, 0, 1},
        {"exceeds its own range", 2000, 500, 1000, 1, 0, 1},
        {"never wraps", 1000, 1500, 0, 1e6, 500, 0},
    };
    for (const auto& c : cases) {
        EnergyCounter counter;
        EXPECT_EQ(counter.advance(c.before, c.range, 1e9), 0u) << "the first reading is the start";
        EXPECT_EQ(counter.advance(c.after, c.range, c.seconds), c.total) << c.teaches;
        EXPECT_EQ(counter.epoch(), c.epoch) << c.teaches;
    }
}

TEST(Powercap, CapturedMachines) {
    const auto channels = [](const char* machine) {
        Powercap powercap(SystemRoot(QUARN_FIXTURES "/power/" + std::string(machine)));
        std::string names;
        for (const auto& channel : sampleAt(powercap, 1)) names += channel.name + ' ';
        return names;
    };
    EXPECT_EQ(channels("two-packages"), "CPU Energy CPU Energy ") << "one of a letter; \"core\" is a part";
    EXPECT_EQ(channels("package-and-core"), "CPU Energy ");
}

TEST(Powercap, NoEnergyIsCountedTwice) {
    Zones machine;
    machine.files(Zones::path("intel-rapl"), "enabled=1");
    const struct {
        const char *id, *name;
        uint64_t before, after;
    } zones[] = {{"intel-rapl:0", "package-0", 1'000'000, 11'000'000},
                 {"intel-rapl:0:0", "core", 500'000, 6'000'000},
                 {"intel-rapl:0:1", "uncore", 200'000, 3'200'000},
                 {"intel-rapl:0:2", "dram", 300'000, 2'300'000},
                 {"intel-rapl:1", "psys", 9'000'000, 59'000'000},
                 {"intel-rapl-mmio:0", "package-0", 1'000'000, 11'000'000},
                 {"intel-rapl-mmio:0:0", "dram", 300'000, 2'300'000}};
    for (const auto& zone : zones) machine.zone(zone.id, zone.name, zone.before);
    Powercap powercap(machine.root());
    const auto first = sampleAt(powercap, 0);
    for (const auto& zone : zones) machine.set(zone.id, std::to_string(zone.after));
    const auto power = splitPower(energyBetween(first, sampleAt(powercap, 1)), 1);
    EXPECT_DOUBLE_EQ(power.cpuWatts, 7) << "the package less the GPU on it";
    EXPECT_DOUBLE_EQ(power.gpuWatts, 3);
    EXPECT_DOUBLE_EQ(power.dramWatts, 2);
}

TEST(Powercap, AWrapGoesUnnoticed) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 65'532'000'000, 65'532'610'987);
    Powercap powercap(machine.root());
    const auto first = sampleAt(powercap, 0);
    machine.set("intel-rapl:0", "39389013");
    const auto power = splitPower(energyBetween(first, sampleAt(powercap, 2)), 2);
    EXPECT_DOUBLE_EQ(power.cpuWatts, 20);
}

TEST(Powercap, WhatMayNotBeReadIsAbsent) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1'000'000)
        .zone("intel-rapl:0:0", "uncore", 200'000)
        .zone("intel-rapl:1", "package-1", 5)
        .zone("intel-rapl:2", "package-2", 5)
        .deny("intel-rapl:0:0")
        .deny("intel-rapl:1")
        .set("intel-rapl:2", "");
    Powercap powercap(machine.root());
    const auto first = sampleAt(powercap, 0);
    ASSERT_EQ(first.size(), 1u) << "neither a denied counter nor an empty one is 0";
    machine.set("intel-rapl:0", "3000000");
    EXPECT_DOUBLE_EQ(splitPower(energyBetween(first, sampleAt(powercap, 1)), 1).cpuWatts, 2)
        << "with the GPU, which cannot be told apart";

    auto ordinary = openEnergySource(machine.deny("intel-rapl:0").deny("intel-rapl:2").root());
    EXPECT_TRUE(ordinary->sample()) << "counters are there";
    EXPECT_TRUE(ordinary->sample()->empty()) << "but none that this user may read";
    EXPECT_FALSE(openEnergySource(TempRoot().root())->sample()) << "no counters at all";
}

TEST(Powercap, ZonesThatVanishAndReturn) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1'000'000);
    Powercap powercap(machine.root());
    const auto first = sampleAt(powercap, 0);
    machine.remove(Zones::path("intel-rapl:0"));
    const auto gone = sampleAt(powercap, 1);
    EXPECT_TRUE(gone.empty());
    machine.zone("intel-rapl:0", "package-0", 200'000);
    const auto back = sampleAt(powercap, 2);
    EXPECT_TRUE(energyBetween(gone, back).empty());
    machine.set("intel-rapl:0", "1200000");
    EXPECT_DOUBLE_EQ(splitPower(energyBetween(back, sampleAt(powercap, 3)), 1).cpuWatts, 1);
}

TEST(Powercap, TheDifferenceOfTwoCountersNeverFalls) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1000).zone("intel-rapl:0:0", "uncore", 1000);
    Powercap powercap(machine.root());
    sampleAt(powercap, 0);
    machine.set("intel-rapl:0", "3000").set("intel-rapl:0:0", "2000");
    const auto second1 = sampleAt(powercap, 1);
    machine.set("intel-rapl:0:0", "2500"); // read a moment later than its package
    const auto gained = energyBetween(second1, sampleAt(powercap, 2));
    ASSERT_EQ(gained.size(), 2u);
    for (const auto& channel : gained) EXPECT_EQ(channel.energy, channel.name == "GPU" ? 500 : 0);
}

} // namespace
