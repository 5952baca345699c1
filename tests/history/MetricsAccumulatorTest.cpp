#include "history/MetricsAccumulator.h"

#include "history/Support.h"

#include <cmath>
#include <limits>

namespace quarn::testing {
namespace {

constexpr auto most = std::numeric_limits<int64_t>::max();

MetricsSample readingAt(double time) {
    MetricsSample sample;
    sample.time = WallTime(std::chrono::milliseconds(std::llround(time * 1000)));
    sample.cpuPercent = 50;
    sample.memoryUsed = 1000;
    sample.watts = 10;
    sample.diskRead = sample.diskWrite = sample.networkIn = sample.networkOut = 5000;
    return sample;
}

SystemMetrics onlyBucket(MetricsAccumulator& accumulator, int64_t minute) {
    const auto batch = accumulator.drain();
    EXPECT_EQ(batch.system.size(), 1u);
    EXPECT_TRUE(batch.system.contains(minute));
    return batch.system.empty() ? SystemMetrics() : batch.system.begin()->second;
}

TEST(MetricsAccumulator, IntegratesWhatLiesAtMostAMinuteApart) {
    struct Row {
        double from, to;
        std::optional<int64_t> minute; ///< that gets it all
    };
    const std::vector<Row> rows{
        {fullHour, fullHour + 60, fullHour + 60},
        {fullHour, fullHour + 61, {}},
        {fullHour + 5, fullHour + 5, {}},
        {fullHour + 5, fullHour + 4, {}},
        {-61, -59.5, -60}, // before 1970
        {fullHour + 58, fullHour + 63, fullHour + 60},
    };
    for (const auto& row : rows) {
        MetricsAccumulator accumulator;
        accumulator.add(readingAt(row.from));
        accumulator.add(readingAt(row.to));
        if (!row.minute) {
            EXPECT_TRUE(accumulator.drain().empty()) << row.from << " to " << row.to;
            accumulator.add(readingAt(row.to + 1)); // goes on from there
            EXPECT_EQ(accumulator.drain().system.begin()->second.seconds, 1);
            continue;
        }
        const double dt = row.to - row.from;
        EXPECT_EQ(onlyBucket(accumulator, *row.minute), (SystemMetrics{.seconds = dt,
                                                                       .cpuSeconds = dt / 2,
                                                                       .peakCPUPercent = 50,
                                                                       .memoryByteSeconds = dt * 1000,
                                                                       .peakMemoryBytes = 1000,
                                                                       .energyJoules = dt * 10,
                                                                       .powerSeconds = dt}));
    }
}

TEST(MetricsAccumulator, StrangeReadingsDoNoHarm) {
    MetricsAccumulator accumulator;
    accumulator.add(readingAt(fullHour));
    auto sample = readingAt(fullHour + 1);
    sample.diskRead = 10;                                    // a disk was pulled out
    sample.diskWrite = std::numeric_limits<uint64_t>::max(); // a driver counts backwards through zero
    sample.networkIn = 5007;
    sample.memoryUsed = sample.swapUsed = std::numeric_limits<uint64_t>::max();
    sample.cpuPercent = std::nan("");
    sample.watts = std::numeric_limits<double>::infinity();
    accumulator.add(sample);
    sample = readingAt(fullHour + 2);
    sample.diskRead = 15;
    sample.networkIn = 5010;
    sample.watts.reset();
    accumulator.add(sample);

    const auto bucket = onlyBucket(accumulator, fullHour);
    EXPECT_EQ(bucket, (SystemMetrics{.seconds = 2,
                                     .cpuSeconds = 0.5,
                                     .peakCPUPercent = 50,
                                     .memoryByteSeconds = bucket.memoryByteSeconds,
                                     .peakMemoryBytes = most,
                                     .peakSwapBytes = most,
                                     .diskReadBytes = 5,
                                     .diskWriteBytes = most,
                                     .networkInBytes = 10}));
}

TEST(MetricsAccumulator, GoesOnSeamlesslyAcrossWritesAndAfreshAfterSleep) {
    MetricsAccumulator accumulator;
    accumulator.add(readingAt(fullHour));
    accumulator.add(readingAt(fullHour + 1));
    EXPECT_EQ(onlyBucket(accumulator, fullHour).seconds, 1);
    accumulator.add(readingAt(fullHour + 3));
    EXPECT_EQ(onlyBucket(accumulator, fullHour).seconds, 2);
    accumulator.forgetReferences();
    accumulator.add(readingAt(fullHour + 30));
    EXPECT_TRUE(accumulator.drain().empty());
}

TEST(MetricsAccumulator, ChargesApplicationsByTheHour) {
    MetricsAccumulator accumulator;
    const auto list = [&](double time, std::vector<AppActivity> apps) {
        accumulator.addUnnamed(readingAt(time).time, apps);
    };
    const AppGrowth work{2'000'000'000, 1'500'000, 500'000, 2000, 3'000'000'000, true};
    list(fullHour - 10, {{"/editor", 100, {}}});
    list(fullHour - 5, {{"/editor", 100, work}, {"/shell", 7, {}}});
    const AppGrowth rest{.energyKnown = true};
    list(fullHour, {{"/editor", 40, rest}});       // that it used no energy is known
    list(fullHour + 100, {{"/editor", 40, work}}); // after a hole
    accumulator.name({{"/editor", "Editor"}});
    const auto batch = accumulator.drain();

    const auto& before = batch.apps.at(fullHour - 3600);
    const auto& editor = before.at("/editor");
    EXPECT_DOUBLE_EQ(editor.energyImpact, 200 + 0.8 + 0.6);
    EXPECT_EQ(editor, (AppMetrics{.name = "Editor",
                                  .seconds = 5,
                                  .cpuSeconds = 2,
                                  .memoryByteSeconds = 500,
                                  .peakMemoryBytes = 100,
                                  .diskReadBytes = 1'500'000,
                                  .diskWriteBytes = 500'000,
                                  .energyImpact = editor.energyImpact,
                                  .energyJoules = 3,
                                  .energySeconds = 5}));
    EXPECT_EQ(before.at("/shell").energySeconds, 0);
    EXPECT_EQ(batch.apps.at(fullHour).at("/editor").cpuSeconds, 0);
    EXPECT_EQ(batch.apps.at(fullHour).at("/editor").energySeconds, 5);
    EXPECT_EQ(accumulator.unnamedApps(), (std::set<std::string, std::less<>>{"/shell"}));

    list(fullHour + 101, {{"/editor", 40, {}}}); // named from the start now
    accumulator.addUnnamed(std::vector<AppTraffic>{{"/editor", 30, 4}}, readingAt(fullHour + 99).time,
                           readingAt(fullHour + 101).time);
    const auto later = accumulator.drain().apps.at(fullHour).at("/editor");
    EXPECT_EQ(later.name, "Editor");
    EXPECT_EQ(later.networkInBytes, 30);
    EXPECT_EQ(later.networkOutBytes, 4);
}

/// A day of a machine whose load changes every few seconds, sampled every `step` seconds.
SystemMetrics dayAt(double step) {
    MetricsAccumulator accumulator;
    SystemMetrics total;
    for (double time = 0; time <= 86'400; time += step) {
        auto sample = readingAt(fullHour + time);
        sample.cpuPercent = std::fmod(std::floor(time / 7) * 37, 100);
        sample.memoryUsed = 1'000'000 + static_cast<uint64_t>(std::fmod(time, 600) * 100);
        sample.watts = 20 + std::fmod(std::floor(time / 11) * 13, 30);
        sample.diskRead = static_cast<uint64_t>(time * 1e6);
        accumulator.add(sample);
    }
    for (const auto& [minute, bucket] : accumulator.drain().system) mergeInto(total, bucket);
    return total;
}

TEST(MetricsAccumulator, TheSamplingProfileDoesNotChangeTotals) {
    const auto fine = dayAt(1), coarse = dayAt(5);
    EXPECT_DOUBLE_EQ(fine.seconds, 86'400);
    EXPECT_DOUBLE_EQ(coarse.seconds, 86'400);
    EXPECT_EQ(fine.diskReadBytes, coarse.diskReadBytes); // counted by the kernel, not sampled
    EXPECT_NEAR(fine.cpuSeconds / coarse.cpuSeconds, 1, 0.01);
    EXPECT_NEAR(fine.memoryByteSeconds / coarse.memoryByteSeconds, 1, 0.01);
    EXPECT_NEAR(fine.energyJoules / coarse.energyJoules, 1, 0.01);
}

} // namespace
} // namespace quarn::testing
