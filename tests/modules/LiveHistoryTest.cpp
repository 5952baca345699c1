#include "ui/modules/LiveHistory.h"

#include "history/HistorySample.h"
#include "support/Joined.h"

#include <cmath>

namespace quarn {
namespace {

void add(LiveHistory& history, double time, double cpu, double tick = 2) {
    Snapshot snapshot;
    snapshot.cpu.total = cpu;
    history.add(snapshot, {}, time, tick);
}

TEST(LiveHistory, APauseIsAGapAndALateTickIsNot) {
    LiveHistory history;
    add(history, 100, 10);
    add(history, 104.9, 20);
    ASSERT_EQ(history.times().size(), 2U);
    add(history, 110.1, 30);
    ASSERT_EQ(history.times().size(), 4U);
    EXPECT_TRUE(std::isnan(history.values(LiveSeries::cpuTotal)[2]));
    EXPECT_TRUE(std::is_sorted(history.times().begin(), history.times().end()));
    EXPECT_LT(history.times()[2], history.times()[3]);
}

TEST(LiveHistory, WhatIsUnknownIsNoNumber) {
    LiveHistory history;
    Snapshot snapshot;
    snapshot.gpu.device = -1;
    history.add(snapshot, {.rates = false, .cpu = false, .memory = false, .memoryParts = false}, 1, 2);
    for (size_t i = 0; i < static_cast<size_t>(LiveSeries::count); ++i)
        EXPECT_TRUE(std::isnan(history.values(static_cast<LiveSeries>(i))[0])) << i;
}

TEST(LiveHistory, PeaksMoveOnlyWhenASliceOfTheGridEnds) {
    LiveHistory history;
    for (const auto& [time, cpu] : {std::pair{100.0, 50.0}, {101.0, 80.0}, {102.0, 10.0}, {104.0, 20.0}})
        add(history, time, cpu);
    const auto shown = [&] { return history.peaks(LiveSeries::cpuTotal, 8, 4); }; // slices of 2 s
    EXPECT_EQ(testing::joinedEach(shown(), std::identity()), "nan 80 10 20 ");
    add(history, 105.9, 15); // the same slice
    EXPECT_EQ(shown()[1], 80);
    add(history, 106, 5);
    EXPECT_EQ(shown(), (std::vector<double>{80, 10, 20, 5}));
    add(history, 114, 1); // a slice without a reading stays empty
    EXPECT_TRUE(std::isnan(shown()[1]));
    EXPECT_EQ(history.peaks(LiveSeries::cpuTotal, 0, 2).size(), 2U);
}

TEST(LiveHistory, AGraphHasNoGapsBetweenTicks) {
    for (const double tick : {1.0, 2.0, 5.0}) {
        LiveHistory history;
        double time = 1000.3;
        for (int i = 0; i < 200; ++i) add(history, time += tick + (i % 3 - 1) * 0.1, 50, tick);
        const size_t slices = history.slicesWithin(60, 60);
        EXPECT_GE(slices, 8U) << tick;
        for (const double peak : history.peaks(LiveSeries::cpuTotal, 60, slices)) EXPECT_EQ(peak, 50) << tick;
    }
    EXPECT_EQ(LiveHistory().slicesWithin(60, 30), 30U);
}

TEST(LiveHistory, TheGraphOfAKindAddsUpWhatMovedAtOneTime) {
    LiveHistory history;
    Snapshot snapshot;
    double time = 0;
    for (const auto& [in, out] : {std::pair{100.0, 1.0}, {2.0, 90.0}}) {
        snapshot.net.rxRate = in;
        snapshot.net.txRate = out;
        history.add(snapshot, {}, ++time, 2);
    }
    EXPECT_EQ(history.peaks(seriesOf(WidgetKind::network), 60, 1), std::vector<double>{101});
    for (const WidgetKind kind : allWidgetKinds)
        EXPECT_EQ(seriesOf(kind).size(), Reading{snapshot}.values(kind).size()) << widgetKindId(kind);
}

TEST(LiveHistory, KeepsHalfAnHourAndNotForever) {
    LiveHistory history;
    for (double time = 0; time <= 10'000; time += 2) {
        add(history, time, 1);
        EXPECT_LE(history.times().back() - history.times().front(), 1.25 * LiveHistory::longestSpan);
        if (time >= 1800) {
            EXPECT_GE(history.times().back() - history.times().front(), LiveHistory::longestSpan);
        }
    }
    EXPECT_EQ(history.values(LiveSeries::load).size(), history.times().size());
}

TEST(LiveHistory, BeginsWithWhatWasSaved) {
    const WallTime wall = WallTime(std::chrono::seconds(1'790'000'000));
    std::vector<std::shared_ptr<const HistorySample>> samples;
    // Too old, a pair, one after a break, out of order after the clock was set back, after the first own
    // point.
    for (const int age : {1801, 300, 299, 100, 250, 5}) {
        auto sample = std::make_shared<HistorySample>();
        sample->time = wall - std::chrono::seconds(age);
        sample->cpuTotal = age;
        sample->memUsed = 25;
        sample->sensorGroupMax = {NAN, 61};
        sample->hotspotC = 70;
        samples.push_back(sample);
    }
    const std::pair<double, double> breaks[]{{1'790'000'000 - 290, 1'790'000'000 - 110}};
    LiveHistory history;
    add(history, 1990, 7); // the program has run for ten seconds
    add(history, 1992, 8);
    history.restore(samples, breaks, 100, {wall, 2000});
    const auto times = history.times(), cpu = history.values(LiveSeries::cpuTotal);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_EQ(times.front(), 1700);
    EXPECT_EQ(times.back(), 1992);
    EXPECT_EQ(testing::joinedEach(cpu, std::identity()), "300 299 nan 100 nan 7 8 ");
    EXPECT_EQ(history.values(LiveSeries::memoryUsed)[0], 25);
    EXPECT_EQ(history.values(LiveSeries::temperature)[0], 61);
    EXPECT_TRUE(std::isnan(history.values(LiveSeries::load)[0]));
    add(history, 1994, 9);
    EXPECT_EQ(history.times().size(), 8U);

    LiveHistory empty;
    empty.restore({}, {}, 0, {wall, 10});
    EXPECT_TRUE(empty.empty());
}

} // namespace
} // namespace quarn
