// Energy counters, what they make of a machine's power, and its report over time.
#include "core/IOReport.h"
#include "core/Support.h"
#include "core/linux/Powercap.h"

#include <cmath>
#include <cstdlib>
#include <deque>

namespace {

using namespace quarn::testing;

TEST(PowerSplit, Units) {
    const auto watts = [](const char* unit, int64_t energy, double seconds) {
        return channelWatts({"1", "CPU Energy", unit, energy}, seconds);
    };
    EXPECT_DOUBLE_EQ(watts("mJ", 500, 0.5), 1);
    EXPECT_DOUBLE_EQ(watts("nJ", 2'000'000'000, 2), 1);
    for (const char* micro : {"uJ", "µJ"}) EXPECT_DOUBLE_EQ(watts(micro, 3'000'000, 1), 3) << micro;
    for (const char* joules : {"J", ""}) EXPECT_DOUBLE_EQ(watts(joules, 5, 1), 5) << joules;
}

TEST(PowerSplit, ChannelsAndWhatTheyMark) {
    const auto split = [](const EnergySample& gained) { return splitPower(gained, 2); };
    const struct {
        const char* channel;
        double SCPower::*field;
        bool marks;
    } cases[] = {{"CPU Energy", &SCPower::cpuWatts, true},  {"GPU", &SCPower::gpuWatts, true},
                 {"ANE", &SCPower::aneWatts, true},         {"DRAM", &SCPower::dramWatts, true},
                 {"ISP", &SCPower::ispWatts, false},        {"DISP", &SCPower::displayWatts, false},
                 {"AVE", &SCPower::encoderWatts, false},    {"VDEC", &SCPower::decoderWatts, false},
                 {"DISPEXT", &SCPower::displayWatts, false}};
    for (const auto& c : cases) {
        const auto power = split({{"1", c.channel, "J", 4}, {"2", c.channel, "J", 6}});
        EXPECT_EQ(power.*c.field, 5) << c.channel << ": channels of one name add up";
        EXPECT_EQ(power.available, c.marks) << c.channel << ": the four main domains must not all rest";
    }
    EXPECT_TRUE(split({{"1", "AVE", "J", 2}, {"2", "GPU", "J", 1}}).available);
    EXPECT_FALSE(split({{"1", "CPU Energy", "J", 0}, {"2", "GPU", "J", 0}}).available);
    EXPECT_FALSE(split({{"1", "cpu energy", "J", 9}, {"2", "psys", "J", 9}}).available) << "unknown names";
}

TEST(EnergyBetween, OnlyWhatCanBeCompared) {
    const auto gained =
        energyBetween({{"a", "GPU", "J", 10}, {"gone", "GPU", "J", 1}, {"fell", "GPU", "J", 9}},
                      {{"new", "GPU", "J", 99}, {"a", "GPU", "J", 14}, {"fell", "GPU", "J", 3}});
    ASSERT_EQ(gained.size(), 1u);
    EXPECT_EQ(joined(gained[0].id, gained[0].energy), "a|4");
}

/// Plays back samples, one a call.
struct Playback final : EnergySource {
    explicit Playback(std::deque<std::optional<EnergySample>> samples) : script(std::move(samples)) {}
    std::optional<EnergySample> sample() override {
        auto next = script.front();
        script.pop_front();
        return next;
    }
    std::deque<std::optional<EnergySample>> script;
};

EnergySample cpu(int64_t joules) { return {{"p0", "CPU Energy", "J", joules}}; }

TEST(IOReport, AveragesSinceTheReadingBefore) {
    uint64_t now = 0;
    double total = 0;
    const auto report = [&](std::deque<std::optional<EnergySample>> script) {
        return IOReport(
            std::make_unique<Playback>(std::move(script)), [&] { return now; }, [&] { return total; });
    };
    auto kept =
        report({cpu(100), cpu(110), cpu(150), {}, cpu(180), cpu(190), cpu(195), EnergySample{}, cpu(200)});
    EXPECT_TRUE(kept.ready());
    const struct {
        uint64_t second;
        double total;
        const char *shown, *teaches; ///< of processors and all; whether it was measured
    } calls[] = {
        {2, 30, "5|30|1", "the first call measures from construction"},
        {4, NAN, "20|0|1", "nothing tells the power of the whole"},
        {5, 30, "0|0|0", "a reading that failed"},
        {7, 30, "10|30|1", "over all of the three seconds"},
        {7, 30, "0|0|0", "no time went by"},
        {8, 30, "5|30|1", "the sample that gave nothing was the new baseline"},
        {9, 30, "0|30|0", "the counters may no longer be read"},
        {10, 30, "0|30|0", "and are back: nothing to compare with yet"},
    };
    for (const auto& call : calls) {
        now = call.second * 1'000'000'000;
        total = call.total;
        const auto power = kept.sample();
        EXPECT_EQ(joined(power.cpuWatts, power.sysWatts, power.available), call.shown) << call.teaches;
    }
    auto notReady = report({{}, cpu(1), cpu(9)});
    now += 1'000'000'000;
    EXPECT_FALSE(notReady.ready());
    EXPECT_EQ(notReady.sample().sysWatts, 0) << "not ready, and it stays so";
}

TEST(IOReport, DebugLines) {
    for (const bool wanted : {true, false}) {
        if (wanted) ::setenv("SC_DEBUG", "", 1);
        uint64_t now = 0;
        IOReport report(
            std::make_unique<Playback>(
                std::deque<std::optional<EnergySample>>{cpu(100), cpu(103), EnergySample{}}),
            [&] { return now += 2'000'000'000; }, [] { return 0.0; });
        ::unsetenv("SC_DEBUG");
        for (const char* line : {"delta CPU Energy = 3 (1.5 W)\n", "delta has no IOReportChannels\n"}) {
            ::testing::internal::CaptureStderr();
            report.sample();
            EXPECT_EQ(::testing::internal::GetCapturedStderr(), wanted ? line : "");
        }
    }
}

constexpr uint64_t range = 262'143'328'850; // µJ, of a real processor

TEST(EnergyCounter, WrapsAndResets) {
    const auto counted = [](uint64_t before, uint64_t after, uint64_t wrapsAt, double seconds) {
        EnergyCounter counter;
        EXPECT_EQ(counter.advance(before, wrapsAt, 1e9), 0u) << "the first reading is the start";
        const uint64_t total = counter.advance(after, wrapsAt, seconds);
        return joined(total, counter.epoch());
    };
    EXPECT_EQ(counted(1000, 1500, range, 1), "500|0");
    EXPECT_EQ(counted(range - 20'000'000, 30'000'000, range, 1), "50000000|0") << "wraps";
    EXPECT_EQ(counted(range / 2, 0, range, 1), "0|1") << "was set back: 100 kW would be no wrap";
    EXPECT_EQ(counted(1000, 5000, range, 600), "0|1") << "may have wrapped unseen in all that time";
    EXPECT_EQ(counted(1000, 5000, range * 1000, 600), "4000|0") << "has a long range";
    EXPECT_EQ(counted(1000, 500, 0, 1), "0|1") << "falls without a range";
    EXPECT_EQ(counted(2000, 500, 1000, 1), "0|1") << "exceeds its own range";
    EXPECT_EQ(counted(1000, 1500, 0, 1e6), "500|0") << "never wraps";
}

/// A small machine with power-capping zones, whose counters a test moves.
struct Zones : TempRoot {
    Zones& zone(const std::string& id, const std::string& name, uint64_t energy, uint64_t wrapsAt = range) {
        files(path(id), "name=" + name + ";max_energy_range_uj=" + std::to_string(wrapsAt));
        return set(id, std::to_string(energy));
    }
    Zones& set(const std::string& id, const std::string& energy) {
        files(path(id), "energy_uj=" + energy);
        return *this;
    }
    /// Makes reading fail, as it does for ordinary users (who these tests may not be).
    Zones& deny(const std::string& id) {
        remove(path(id) + "/energy_uj").folder(path(id) + "/energy_uj");
        return *this;
    }
    static std::string path(const std::string& id) { return "sys/class/powercap/" + id; }

    /// What was gained since the call before, "CPU Energy|500 GPU|20 ", in microjoules.
    std::string gainedAt(double second) {
        if (!powercap) powercap.emplace(root());
        EnergySample now;
        powercap->sample(static_cast<uint64_t>(second * 1e9), now);
        return joinedEach(energyBetween(std::exchange(last, now), now), &EnergyChannel::name,
                          &EnergyChannel::energy);
    }
    std::optional<Powercap> powercap;
    EnergySample last;
};

TEST(Powercap, CapturedMachines) {
    const auto channels = [](const char* machine) {
        Powercap powercap(capturedRoot("power/" + std::string(machine)));
        EnergySample sample;
        powercap.sample(1, sample);
        return joinedEach(sample, &EnergyChannel::name);
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
    machine.gainedAt(0);
    for (const auto& zone : zones) machine.set(zone.id, std::to_string(zone.after));
    EXPECT_EQ(machine.gainedAt(1), "GPU|3000000 CPU Energy|7000000 DRAM|2000000 ")
        << "the package less the GPU on it";
}

TEST(Powercap, AWrapGoesUnnoticed) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 65'532'000'000, 65'532'610'987).gainedAt(0);
    machine.set("intel-rapl:0", "39389013");
    EXPECT_EQ(machine.gainedAt(2), "CPU Energy|40000000 ");
}

TEST(Powercap, WhatMayNotBeReadIsAbsent) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1'000'000).zone("intel-rapl:0:0", "uncore", 200'000);
    machine.zone("intel-rapl:1", "package-1", 5).zone("intel-rapl:2", "package-2", 5).set("intel-rapl:2", "");
    machine.deny("intel-rapl:0:0").deny("intel-rapl:1").gainedAt(0);
    EXPECT_EQ(machine.last.size(), 1u) << "neither a denied counter nor an empty one is 0";
    machine.set("intel-rapl:0", "3000000");
    EXPECT_EQ(machine.gainedAt(1), "CPU Energy|2000000 ") << "with the GPU, which cannot be told apart";

    auto ordinary = openEnergySource(machine.deny("intel-rapl:0").deny("intel-rapl:2").root());
    EXPECT_TRUE(ordinary->sample()) << "counters are there";
    EXPECT_TRUE(ordinary->sample()->empty()) << "but none that this user may read";
    EXPECT_FALSE(openEnergySource(TempRoot().root())->sample()) << "no counters at all";
}

TEST(Powercap, ZonesThatVanishAndReturn) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1'000'000).gainedAt(0);
    machine.remove(Zones::path("intel-rapl:0"));
    EXPECT_EQ(machine.gainedAt(1), "");
    EXPECT_TRUE(machine.last.empty());
    EXPECT_EQ(machine.zone("intel-rapl:0", "package-0", 200'000).gainedAt(2), "");
    EXPECT_EQ(machine.set("intel-rapl:0", "1200000").gainedAt(3), "CPU Energy|1000000 ");
}

TEST(Powercap, TheDifferenceOfTwoCountersNeverFalls) {
    Zones machine;
    machine.zone("intel-rapl:0", "package-0", 1000).zone("intel-rapl:0:0", "uncore", 1000).gainedAt(0);
    machine.set("intel-rapl:0", "3000").set("intel-rapl:0:0", "2000").gainedAt(1);
    machine.set("intel-rapl:0:0", "2500"); // read a moment later than its package
    EXPECT_EQ(machine.gainedAt(2), "GPU|500 CPU Energy|0 ");
}

} // namespace
