#include "ui/modules/HistorySeries.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

namespace quarn {
namespace {

constexpr int64_t oneHour = 3600, start = 1'700'006'400; // a full hour

SystemPoint point(int64_t at, double seconds, double cpuSeconds) {
    SystemPoint result{at, {}};
    result.metrics.seconds = seconds;
    result.metrics.cpuSeconds = cpuSeconds;
    result.metrics.diskReadBytes = 6000;
    return result;
}

HistoryAnswer aDay() {
    HistoryAnswer answer;
    answer.question = {HistorySpan::week, AppHistoryMetric::cpu, 10, "app"};
    answer.from = start;
    answer.to = start + 3 * oneHour + 1800;
    answer.points = {point(start, 3600, 900), point(start + 2 * oneHour, 1800, 1800),
                     point(start + 3 * oneHour, 0, 0)};
    return answer;
}

TEST(HistorySeries, MeansAreOverWhatWasObserved) {
    constexpr SystemLine lines[]{SystemLine::cpu, SystemLine::diskRead, SystemLine::power};
    const auto series = systemSeries(aDay(), lines);
    ASSERT_EQ(series.periods.size(), 3u);
    EXPECT_EQ(series.periods[1], (HistorySeries::Period{start + 2 * oneHour, start + 3 * oneHour}));
    EXPECT_EQ(series.periods[2].to, start + 3 * oneHour + 1800) << "the current hour ends now";
    EXPECT_DOUBLE_EQ(series.lines[0][0], 25);
    EXPECT_DOUBLE_EQ(series.lines[0][1], 100) << "half an hour of it was observed";
    EXPECT_DOUBLE_EQ(series.lines[1][1], 6000.0 / 1800);
    for (const auto& line : series.lines) EXPECT_TRUE(std::isnan(line[2])) << "nothing was observed";
    EXPECT_TRUE(std::isnan(series.lines[2][0])) << "power that was not known is not 0";
}

TEST(HistorySeries, ManyPointsAreShownTogether) {
    HistoryAnswer answer = aDay();
    answer.question.span = HistorySpan::day;
    answer.points = {point(start, 60, 6), point(start + 240, 60, 18), point(start + 300, 60, 6),
                     point(start + 900, 60, 6)};
    answer.points[0].metrics.peakCPUPercent = 80;
    constexpr SystemLine lines[]{SystemLine::cpu, SystemLine::cpuPeak};
    const auto series = systemSeries(answer, lines);
    using Period = HistorySeries::Period;
    EXPECT_EQ(
        series.periods,
        (std::vector<Period>{{start, start + 300}, {start + 300, start + 360}, {start + 900, start + 960}}));
    EXPECT_DOUBLE_EQ(series.lines[0][0], 20);
    EXPECT_DOUBLE_EQ(series.lines[1][0], 80);
}

TEST(HistorySeries, AnApplicationThatDidNotRunDidNothing) {
    HistoryAnswer answer = aDay();
    AppMetrics busy;
    busy.seconds = 600;
    busy.cpuSeconds = 450;
    busy.memoryByteSeconds = 600 * 1000.0;
    answer.appPoints = {{start, busy}, {start + 3 * oneHour, busy}};
    constexpr AppLine lines[]{AppLine::cpu, AppLine::memory};
    const auto series = appSeries(answer, lines);
    ASSERT_EQ(series.periods.size(), 3u) << "the second hour was not recorded";
    EXPECT_DOUBLE_EQ(series.lines[0][0], 12.5) << "of the whole hour";
    EXPECT_DOUBLE_EQ(series.lines[0][1], 0);
    EXPECT_DOUBLE_EQ(series.lines[0][2], 25) << "of the half hour so far";
    EXPECT_DOUBLE_EQ(series.lines[1][0], 1000);
    EXPECT_TRUE(std::isnan(series.lines[1][1])) << "what did not run has no memory";
}

TEST(HistorySeries, DaysAreThoseOfTheCalendar) {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    constexpr int64_t midnight = 1'792'879'200; // of 25 October 2026, a day of 25 hours
    HistoryAnswer answer = aDay();
    answer.question.span = HistorySpan::year;
    answer.from = midnight;
    answer.to = midnight + 40 * oneHour;
    answer.points = {point(midnight, 3600, 900), point(midnight + 25 * oneHour, 3600, 900)};
    constexpr SystemLine lines[]{SystemLine::cpu};
    const auto series = systemSeries(answer, lines);
    EXPECT_EQ(series.periods[0].to, midnight + 25 * oneHour);
    constexpr AppLine appLines[]{AppLine::cpu};
    EXPECT_EQ(appSeries(answer, appLines).periods, series.periods);

    answer.question.span = HistorySpan::twoYears;
    answer.points.push_back(point(midnight + 49 * oneHour, 3600, 3600));
    answer.to = midnight + 60 * oneHour;
    const auto weeks = systemSeries(answer, lines);
    ASSERT_EQ(weeks.periods.size(), 2u) << "that Sunday, then Monday and Tuesday";
    EXPECT_DOUBLE_EQ(weeks.lines[0][1], 62.5);
    ::setenv("TZ", "UTC", 1);
    ::tzset();
}

} // namespace
} // namespace quarn
