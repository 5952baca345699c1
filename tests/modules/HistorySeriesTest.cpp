#include "ui/modules/HistorySeries.h"

#include "history/AppLiveHistory.h"
#include "history/Support.h"
#include "support/Joined.h"

namespace quarn {
namespace {

constexpr int64_t oneHour = 3600, start = 1'700'006'400; // a full hour

SystemPoint point(int64_t at, double seconds, double cpuSeconds) {
    return {at, {.seconds = seconds, .cpuSeconds = cpuSeconds, .diskReadBytes = 6000}};
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

std::string text(std::span<const double> line) { return testing::joinedEach(line, std::identity()); }

TEST(HistorySeries, MeansAreOverWhatWasObserved) {
    constexpr SystemLine lines[]{SystemLine::cpu, SystemLine::diskRead, SystemLine::power};
    const auto series = systemSeries(aDay(), lines);
    ASSERT_EQ(series.periods.size(), 3u);
    EXPECT_EQ(series.periods[1], (HistorySeries::Period{start + 2 * oneHour, start + 3 * oneHour}));
    EXPECT_EQ(series.periods[2].to, start + 3 * oneHour + 1800) << "the current hour ends now";
    EXPECT_EQ(text(series.lines[0]), "25 100 nan ") << "half an hour was observed, then nothing";
    EXPECT_EQ(text(series.lines[1]), "1.666666667 3.333333333 nan ");
    EXPECT_EQ(text(series.lines[2]), "nan nan nan ") << "power that was not known is not 0";
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
    const AppMetrics busy{.name = "", .seconds = 600, .cpuSeconds = 450, .memoryByteSeconds = 600 * 1000.0};
    answer.appPoints = {{start, busy}, {start + 3 * oneHour, busy}};
    constexpr AppLine lines[]{AppLine::cpu, AppLine::memory};
    const auto series = appSeries(answer, lines);
    ASSERT_EQ(series.periods.size(), 3u) << "the second hour was not recorded";
    EXPECT_EQ(text(series.lines[0]), "12.5 0 25 ") << "of the whole hour, and of the half hour so far";
    EXPECT_EQ(text(series.lines[1]), "1000 nan 1000 ") << "what did not run has no memory";
}

TEST(HistorySeries, MinutesAreOverWhatWasObserved) {
    const AppMetrics busy{.name = "", .seconds = 10, .cpuSeconds = 5};
    const AppMinute minutes[]{{start, 20, busy}, {start + 120, 60, {}}, {start + 180, 10, busy}};
    const auto series = appSeries(minutes, appLines(AppHistoryMetric::cpu), start + 190);
    EXPECT_EQ(text(series.lines.at(0)), "25 0 50 ");
    EXPECT_EQ(series.periods.at(2), (HistorySeries::Period{start + 180, start + 190}));
}

TEST(HistorySeries, DaysAreThoseOfTheCalendar) {
    const testing::TimeZone zone(testing::berlin);
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
}

} // namespace
} // namespace quarn
