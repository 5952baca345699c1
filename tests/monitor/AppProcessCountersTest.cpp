#include "monitor/AppProcessCounters.h"

#include "monitor/Processes.h"
#include "support/Joined.h"

#include <map>

namespace quarn {
namespace {

ProcInfo process(int64_t pid, uint64_t counters, uint64_t start = 1) {
    ProcInfo info = testing::processOf(pid);
    info.startTimeMicros = start;
    info.ioKnown = true;
    info.cpuTimeNs = counters;
    info.diskRead = counters * 2;
    info.diskWrite = counters * 3;
    info.contextSwitches = counters * 4;
    info.memBytes = 10;
    return info;
}

/// Runs rounds over lists in which the application of a process is "a" for even pids and "b" for odd ones.
struct Rounds {
    AppProcessCounters counters;
    std::map<std::string, AppActivity> apps; ///< of the latest round

    void round(const std::vector<ProcInfo>& processes) {
        std::vector<ProcessOwner> owners(processes.size());
        for (size_t i = 0; i < owners.size(); ++i) owners[i].app = processes[i].pid % 2 == 0 ? "a" : "b";
        apps.clear();
        for (const auto& each : counters.sample(processes, owners))
            EXPECT_TRUE(apps.emplace(each.app.view(), each).second) << "twice";
    }
    const AppGrowth& grown(const char* app) { return apps[app].growth; }
    /// CPU time and memory of both.
    std::string both() {
        return testing::joined(grown("a").cpuNs, apps["a"].memBytes, grown("b").cpuNs, apps["b"].memBytes);
    }
};

TEST(AppProcessCounters, ChargeWhatHappenedSinceTheListBefore) {
    Rounds rounds;
    rounds.round({process(2, 100), process(4, 50), process(5, 7)});
    EXPECT_EQ(rounds.both(), "0|20|0|10") << "a first list is only where counting starts";

    rounds.round({process(2, 110), process(3, 900), process(4, 51), process(5, 7)});
    EXPECT_EQ(rounds.both(), "11|20|0|20") << "neither the new one nor the idle one used any";
    const AppGrowth& grown = rounds.grown("a");
    EXPECT_EQ(testing::joined(grown.cpuNs, grown.diskRead, grown.diskWrite, grown.contextSwitches),
              "11|22|33|44");

    // One ends, one is replaced by another of the same pid, one goes on; in any order.
    rounds.round({process(5, 9), process(3, 950, 2), process(2, 111)});
    EXPECT_EQ(rounds.both(), "1|10|2|20");
    rounds.round({process(2, 115), process(3, 960, 2), process(5, 9)});
    EXPECT_EQ(rounds.both(), "4|10|10|20");
    rounds.round({});
    EXPECT_TRUE(rounds.apps.empty());
}

TEST(AppProcessCounters, NeverInventGrowth) {
    const auto growth = [](ProcInfo before, ProcInfo after) {
        Rounds rounds;
        rounds.round({before});
        rounds.round({after});
        return rounds.grown("a");
    };
    const ProcInfo before = process(2, 100), after = process(2, 150);
    EXPECT_EQ(growth(after, before).cpuNs, 0U); // counters that fell
    ProcInfo hidden = process(2, 0);
    hidden.accessible = hidden.ioKnown = false;
    EXPECT_EQ(growth(hidden, after).cpuNs, 0U); // what was not told is not zero
    EXPECT_EQ(growth(before, hidden).cpuNs, 0U);
    ProcInfo noDisk = before;
    noDisk.ioKnown = false;
    noDisk.diskRead = 0;
    EXPECT_EQ(growth(noDisk, after).diskRead, 0U);
    EXPECT_EQ(growth(noDisk, after).cpuNs, 50U);
}

TEST(AppProcessCounters, EnergyOfThoseThatTell) {
    Rounds rounds;
    ProcInfo telling = process(2, 1), silent = process(5, 1);
    telling.energyNj = 500;
    rounds.round({telling, silent});
    EXPECT_FALSE(rounds.grown("a").energyKnown); // nothing to compare with yet
    telling.energyNj = 800;
    silent.cpuTimeNs = 9;
    rounds.round({telling, silent});
    EXPECT_EQ(rounds.grown("a").energyNj, 300U);
    EXPECT_TRUE(rounds.grown("a").energyKnown);
    EXPECT_FALSE(rounds.grown("b").energyKnown);
    rounds.round({telling, silent});
    EXPECT_TRUE(rounds.grown("a").energyKnown); // that it used none is known
}

TEST(TextNumbers, EqualTextsHaveOneNumber) {
    TextNumbers numbers;
    const std::string text = "editor", copy = text;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(numbers.number(text), 0U);
        EXPECT_EQ(numbers.number({}), 1U);
        EXPECT_EQ(numbers.number(copy), 0U);
        EXPECT_EQ(numbers.number(std::string_view(text).substr(0, 4)), 2U); // at the address of another
        EXPECT_EQ(numbers.number(text), 0U);
        EXPECT_EQ(numbers.text(2), "edit");
        numbers.clear();
    }
    std::vector<std::string> many(5000);
    for (size_t i = 0; i < many.size(); ++i) many[i] = "text " + std::to_string(i);
    for (int round = 0; round < 2; ++round)
        for (size_t i = 0; i < many.size(); ++i) ASSERT_EQ(numbers.number(many[i]), i);
    EXPECT_EQ(numbers.size(), many.size());
}

} // namespace
} // namespace quarn
