#include "ui/modules/HistoryText.h"

#include "support/Joined.h"

#include <cmath>

namespace quarn {
namespace {

constexpr double week = 604'800;

TEST(HistoryText, ComparesInWords) {
    const struct {
        double now, before;
        const char *words, *column;
    } cases[]{
        {112, 100, "12 % more than the week before", "+12 %"},
        {95, 100, "5 % less than the week before", "−5 %"},
        {100.2, 100, "as much as the week before", "±0 %"},
        {310, 100, "3.10 times the week before", "× 3.10"},
        {0, 100, "100 % less than the week before", ""},
        {100, 0, "nothing the week before", "new"},
        {0, 0, "", ""},
        {std::nan(""), 100, "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(comparison(c.now, c.before, HistorySpan::week), c.words) << c.now;
        EXPECT_EQ(shortComparison(c.now, c.before), c.column) << c.now;
    }
    EXPECT_TRUE(areComparable(week, week / 2));
    EXPECT_FALSE(areComparable(week, week / 3)) << "less was observed, not less done";
    EXPECT_FALSE(areComparable(0, 0));
}

SystemMetrics observed(double seconds, double share) {
    return {.seconds = seconds,
            .cpuSeconds = share * seconds,
            .peakCPUPercent = 97,
            .memoryByteSeconds = 4.0 * (1u << 30) * seconds,
            .diskReadBytes = static_cast<int64_t>(share * 10e9),
            .diskWriteBytes = 2'000'000'000};
}

AppTotal total(const char* key, const char* name, double cpuSeconds) {
    return {key, {.name = name, .seconds = week, .cpuSeconds = cpuSeconds, .memoryByteSeconds = week * 1e9}};
}

HistoryAnswer lastWeek() {
    HistoryAnswer answer;
    answer.question = {HistorySpan::week, AppHistoryMetric::cpu, 3, {}};
    answer.total = observed(6 * 86'400 + 4 * 3600, 0.2);
    answer.before = observed(week, 0.1);
    answer.apps = {{total("/menus/firefox.desktop", "Firefox", 7200), total("", "", 6000).metrics},
                   {total("/usr/lib/x/make", "", 3600), {}},
                   {total("idle", "idle", 0), {}}};
    answer.appPeriod = static_cast<int64_t>(week) + 1800;
    answer.appPeriodBefore = static_cast<int64_t>(week);
    return answer;
}

TEST(HistoryText, TotalsOfTheMachine) {
    const auto text = [](const HistoryAnswer& answer) {
        return testing::joinedEach(historyTotals(answer), &HistoryTotal::figure, &HistoryTotal::meaning,
                                   &HistoryTotal::comparison);
    };
    EXPECT_EQ(text(lastWeek()), "20.0 %|on average, 97.0 % at most|2.00 times the week before "
                                "4.00 GiB|on average, 0 B at most|as much as the week before "
                                "4.00 GB|2.00 GB read, 2.00 GB written|33 % more than the week before "
                                "0 B|0 B received, 0 B sent| ")
        << "no power where none was known";

    HistoryAnswer young = lastWeek();
    young.before = observed(3600, 0.1);
    young.total.energyJoules = 3600 * 1200.0;
    young.total.powerSeconds = 3600 * 100.0;
    EXPECT_EQ(text(young), "20.0 %|on average, 97.0 % at most| 4.00 GiB|on average, 0 B at most| "
                           "4.00 GB|2.00 GB read, 2.00 GB written| 0 B|0 B received, 0 B sent| "
                           "1.20 kWh|12.0 W on average| ")
        << "hardly anything was recorded before";
    EXPECT_EQ(text({}), "");
}

TEST(HistoryText, RanksApplicationsThatDidSomething) {
    const auto rows = appRankRows(lastWeek());
    EXPECT_EQ(testing::joinedEach(rows, &AppRankRow::name, &AppRankRow::amount, &AppRankRow::comparison,
                                  &AppRankRow::share),
              "Firefox|2 h 0 min|+20 %|1 make|1 h 0 min|new|0.5 ")
        << "make from its key while no name is known";
    HistoryAnswer young = lastWeek(), forgotten = lastWeek();
    young.before = {};
    EXPECT_EQ(appRankRows(young)[1].comparison, "") << "nothing is new where nothing was recorded before";
    forgotten.apps[0].before.reset();
    EXPECT_EQ(appRankRows(forgotten)[1].comparison, "") << "nor where only the machine's past is kept";
}

TEST(HistoryText, SaysHowMuchOfTheSpanWasRecorded) {
    HistoryAnswer answer = lastWeek();
    EXPECT_EQ(historySentence(answer),
              "6 d 4 h of the last week were recorded; Firefox used most CPU, 2 h 0 min of one core");
    HistoryAnswer hour = answer;
    hour.question.span = HistorySpan::hour;
    hour.to = 1'700'006'400 + 1200;
    hour.appPeriod = 3600 + 1200;
    EXPECT_EQ(historySentence(hour), "All of the last hour was recorded; Firefox used most CPU, 2 h 0 min of "
                                     "one core since 23:00")
        << "applications are kept by full hours";
    answer.apps.clear();
    answer.total.seconds = week - 60;
    EXPECT_EQ(historySentence(answer), "All of the last week was recorded");
    answer.total.seconds = 0;
    EXPECT_EQ(historySentence(answer), "Nothing was recorded in the last week");
}

} // namespace
} // namespace quarn
