#include "monitor/PowerSchedule.h"

namespace {

using namespace quarn;

SCPower split(double cpu) {
    SCPower power{};
    power.cpuWatts = cpu;
    power.sysWatts = cpu + 3;
    power.displayWatts = 2;
    power.available = cpu > 0;
    return power;
}

HelperPower record(double cpu, std::string source = "powercap") {
    HelperPower power;
    power.cpuWatts = cpu;
    power.sysWatts = cpu + 5;
    power.available = cpu > 0;
    power.pFreqMHz = 4000;
    power.source = std::move(source);
    return power;
}

struct Readings : PowerReadings {
    Readings& total(double watts, double at) { return system = System{watts, at}, *this; }
    Readings& sample(double cpu, double at) { return local = Split{split(cpu), at}, *this; }
    Readings& helped(HelperPower power, double at) { return helper = Helper{std::move(power), at}, *this; }
};

TEST(PowerReadings, Precedence) {
    struct Case {
        const char* teaches;
        PowerReadings readings;
        bool helperEnabled;
        double cpu, total;
        bool stale;
        const char* source;
    };
    const double now = 100;
    for (const auto& c : {
             Case{"nothing yet", Readings(), true, 0, 0, false, ""},
             Case{"only the total", Readings().total(20, 99), true, 0, 20, false, "SMC"},
             Case{"the local split", Readings().sample(7, 99), true, 7, 10, false, "IOReport"},
             Case{"the machine's own total beats the sample's", Readings().total(20, 99).sample(7, 99), true,
                  7, 20, false, "IOReport"},
             Case{"a total of 0 is none", Readings().total(0, 99).sample(7, 99), true, 7, 10, false,
                  "IOReport"},
             Case{"the helper sees more", Readings().sample(1, 99).helped(record(9), 98), true, 9, 14, false,
                  "powercap"},
             Case{"unless it is switched off", Readings().sample(1, 99).helped(record(9), 99), false, 1, 4,
                  false, "IOReport"},
             Case{"or has no split", Readings().sample(1, 99).helped(record(0), 99), true, 1, 5, false,
                  "IOReport"},
             Case{"or is silent", Readings().sample(1, 99).helped(record(9), 94), true, 1, 4, false,
                  "IOReport"},
             Case{"an old split is better than none", Readings().sample(7, 94), true, 7, 0, true, "IOReport"},
             Case{"the newer of two old ones", Readings().sample(7, 50).helped(record(9), 60), true, 9, 0,
                  true, "powercap"},
             Case{"which may be the local one", Readings().sample(7, 60).helped(record(9), 50), true, 7, 0,
                  true, "IOReport"},
             Case{"the old one of a helper switched off is gone", Readings().helped(record(9), 60), false, 0,
                  0, false, ""},
             Case{"landed just after the tick", Readings().sample(7, 101), true, 7, 10, false, "IOReport"},
             Case{"from the future", Readings().sample(7, 101.1), true, 7, 0, true, "IOReport"},
             Case{"a total that is none of the machine's", Readings().helped(record(9, "powermetrics"), 99),
                  true, 9, 0, false, "powermetrics"},
         }) {
        SCOPED_TRACE(c.teaches);
        const auto view = c.readings.snapshot(now, c.helperEnabled);
        EXPECT_EQ(view.power.cpuWatts, c.cpu);
        EXPECT_EQ(view.power.sysWatts, c.total);
        EXPECT_EQ(view.powerStale, c.stale);
        EXPECT_EQ(view.powerSource, c.source);
        EXPECT_EQ(view.power.available, c.cpu > 0);
    }
}

TEST(PowerReadings, WhatOneSourceLacksComesFromTheOther) {
    const auto both = Readings().sample(1, 99).helped(record(9), 99).snapshot(100, true);
    EXPECT_EQ(both.power.displayWatts, 2) << "the helper's record carries no display";
    ASSERT_TRUE(both.freq);
    EXPECT_EQ(both.freq->pFreqMHz, 4000);
    EXPECT_FALSE(Readings().helped(record(9), 94).snapshot(100, true).freq) << "old frequencies mislead";
    EXPECT_FALSE(Readings().helped(record(9), 99).snapshot(100, false).freq);
}

TEST(PowerReadings, WindowOfSixSeconds) {
    const auto readings = Readings().sample(7, 0);
    EXPECT_FALSE(readings.snapshot(5.99, true).powerStale);
    EXPECT_TRUE(readings.snapshot(6, true).powerStale);
}

TEST(PowerSchedule, WhatIsDue) {
    const auto plan = SamplingPlan::foreground(SamplingProfile::diagnostic); // ticks of 1 s
    PowerSchedule schedule;
    auto reads = schedule.due(0, plan, {});
    EXPECT_TRUE(reads.system);
    EXPECT_FALSE(reads.split || reads.helper) << "nobody looks at the split";

    reads = schedule.due(0, plan, {true, true});
    EXPECT_TRUE(reads.split && reads.helper && reads.helperResumes) << "the helper may not answer";

    schedule.land({20.0, {}, split(7), record(9)}, reads, 0);
    reads = schedule.due(1.4, plan, {true, true});
    EXPECT_FALSE(reads.any());
    reads = schedule.due(1.5, plan, {true, true});
    EXPECT_TRUE(reads.system);
    EXPECT_FALSE(reads.split || reads.helper);
    reads = schedule.due(3.5, plan, {true, true});
    EXPECT_TRUE(reads.helper);
    EXPECT_FALSE(reads.split) << "the helper's record makes it needless";
    EXPECT_FALSE(reads.helperResumes);
    EXPECT_TRUE(schedule.due(3.5, plan, {true, false}).split) << "the helper was switched off";
}

TEST(PowerSchedule, AHelperThatFallsSilent) {
    const auto plan = SamplingPlan::foreground(SamplingProfile::diagnostic);
    PowerSchedule schedule;
    schedule.land({{}, {}, {}, record(9)}, schedule.due(0, plan, {true, true}), 0);
    auto reads = schedule.due(4, plan, {true, true});
    schedule.land({}, reads, 4); // no answer
    EXPECT_EQ(schedule.readings.snapshot(5, true).power.cpuWatts, 9);
    reads = schedule.due(8, plan, {true, true});
    EXPECT_TRUE(reads.split && reads.helperResumes) << "from here on the local counters stand in";
    schedule.land({{}, {}, split(7), {}}, reads, 8);
    EXPECT_EQ(schedule.readings.snapshot(9, true).powerSource, "IOReport");
    schedule.land({{}, {}, split(7), record(9)}, schedule.due(12, plan, {true, true}), 12);
    EXPECT_EQ(schedule.readings.snapshot(13, true).powerSource, "powercap");
    EXPECT_FALSE(schedule.readings.local);
}

TEST(PowerSchedule, LongTicksDoNotMakeEveryReadingStale) {
    struct Case {
        double tick, stillCurrent, stale;
    };
    for (const auto& c : {Case{2, 5.9, 7.1}, Case{5, 8.4, 8.6}, Case{60, 90, 92}}) {
        const SamplingPlan plan{c.tick, c.tick, false, QualityOfService::utility, 2};
        PowerSchedule schedule;
        schedule.land({20.0, {}, split(7), {}}, schedule.due(0, plan, {true, false}), 0);
        EXPECT_FALSE(schedule.readings.snapshot(c.stillCurrent, false).powerStale) << c.tick;
        EXPECT_EQ(schedule.readings.snapshot(c.stillCurrent, false).power.sysWatts, 20) << c.tick;
        EXPECT_TRUE(schedule.readings.snapshot(c.stale, false).powerStale) << c.tick;
    }
}

TEST(PowerSchedule, OnlyWhatWasAskedLands) {
    PowerSchedule schedule;
    PowerReads onlySystem;
    onlySystem.system = true;
    schedule.land({20.0, 45.0, split(7), record(9)}, onlySystem, 10);
    EXPECT_TRUE(schedule.systemLanded);
    EXPECT_EQ(schedule.dcWatts, 45.0);
    EXPECT_FALSE(schedule.readings.local || schedule.readings.helper);
    schedule.land({{}, {}, {}, {}}, onlySystem, 12);
    EXPECT_EQ(schedule.dcWatts, std::nullopt) << "the adapter was pulled out";
    EXPECT_EQ(schedule.readings.system->acquired, 10) << "a failed reading leaves the former to age";
    EXPECT_EQ(schedule.systemAt, 12);
}

} // namespace
