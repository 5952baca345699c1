#include "monitor/PowerSchedule.h"

#include <fmt/format.h>

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

/// Watts of the processors and of all, the source, and whether the split is an old one.
std::string text(const PowerView& view) {
    return fmt::format("{} of {} W {}{}", view.power.cpuWatts, view.power.sysWatts, view.powerSource,
                       view.powerStale ? ", old" : "");
}

TEST(PowerReadings, Precedence) {
    struct Case {
        const char* teaches;
        PowerReadings readings;
        std::string shown;
        bool helperEnabled = true;
    };
    const double now = 100;
    for (const auto& c : {
             Case{"nothing yet", Readings(), "0 of 0 W "},
             Case{"only the total", Readings().total(20, 99), "0 of 20 W SMC"},
             Case{"the local split", Readings().sample(7, 99), "7 of 10 W IOReport"},
             Case{"the machine's own total beats the sample's", Readings().total(20, 99).sample(7, 99),
                  "7 of 20 W IOReport"},
             Case{"a total of 0 is none", Readings().total(0, 99).sample(7, 99), "7 of 10 W IOReport"},
             Case{"the helper sees more", Readings().sample(1, 99).helped(record(9), 98),
                  "9 of 14 W powercap"},
             Case{"unless it is switched off", Readings().sample(1, 99).helped(record(9), 99),
                  "1 of 4 W IOReport", false},
             Case{"or has no split", Readings().sample(1, 99).helped(record(0), 99), "1 of 5 W IOReport"},
             Case{"or is silent", Readings().sample(1, 99).helped(record(9), 94), "1 of 4 W IOReport"},
             Case{"an old split is better than none", Readings().sample(7, 94), "7 of 0 W IOReport, old"},
             Case{"the newer of two old ones", Readings().sample(7, 50).helped(record(9), 60),
                  "9 of 0 W powercap, old"},
             Case{"which may be the local one", Readings().sample(7, 60).helped(record(9), 50),
                  "7 of 0 W IOReport, old"},
             Case{"of a helper switched off it is gone", Readings().helped(record(9), 60), "0 of 0 W ",
                  false},
             Case{"landed just after the tick", Readings().sample(7, 101), "7 of 10 W IOReport"},
             Case{"from the future", Readings().sample(7, 101.1), "7 of 0 W IOReport, old"},
             Case{"current for six seconds", Readings().sample(7, 94.01), "7 of 10 W IOReport"},
             Case{"a total that is none of the machine's", Readings().helped(record(9, "powermetrics"), 99),
                  "9 of 0 W powermetrics"},
         }) {
        const auto view = c.readings.snapshot(now, c.helperEnabled);
        EXPECT_EQ(text(view), c.shown) << c.teaches;
        EXPECT_EQ(view.power.available, view.power.cpuWatts > 0) << c.teaches;
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

/// "total split helper", and "resumes" where the helper may not answer.
std::string text(const PowerReads& reads) {
    std::string words;
    for (const auto& [isDue, name] : {std::pair{reads.system, "total "},
                                      {reads.split, "split "},
                                      {reads.helper, "helper "},
                                      {reads.helperResumes, "resumes "}})
        if (isDue) words += name;
    return words;
}

TEST(PowerSchedule, WhatIsDue) {
    const auto plan = SamplingPlan::foreground(SamplingProfile::diagnostic); // ticks of 1 s
    PowerSchedule schedule;
    EXPECT_EQ(text(schedule.due(0, plan, {})), "total ") << "nobody looks at the split";
    const auto reads = schedule.due(0, plan, {true, true});
    EXPECT_EQ(text(reads), "total split helper resumes ");

    schedule.land({20.0, {}, split(7), record(9)}, reads, 0);
    EXPECT_EQ(text(schedule.due(1.4, plan, {true, true})), "");
    EXPECT_EQ(text(schedule.due(1.5, plan, {true, true})), "total ");
    EXPECT_EQ(text(schedule.due(3.5, plan, {true, true})), "total helper ") << "its record has the split";
    EXPECT_EQ(text(schedule.due(3.5, plan, {true, false})), "total split ") << "it was switched off";
}

TEST(PowerSchedule, AHelperThatFallsSilent) {
    const auto plan = SamplingPlan::foreground(SamplingProfile::diagnostic);
    PowerSchedule schedule;
    schedule.land({{}, {}, {}, record(9)}, schedule.due(0, plan, {true, true}), 0);
    schedule.land({}, schedule.due(4, plan, {true, true}), 4); // no answer
    EXPECT_EQ(schedule.readings.snapshot(5, true).power.cpuWatts, 9);
    const auto reads = schedule.due(8, plan, {true, true});
    EXPECT_EQ(text(reads), "total split helper resumes ") << "from here on the local counters stand in";
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
