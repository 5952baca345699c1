#include "cli/HistoryCommand.h"

#include "history/Support.h"
#include "support/Contains.h"

#include <nlohmann/json.hpp>

namespace quarn::cli {
namespace {

using quarn::testing::contains;
using quarn::testing::fullHour;

constexpr int64_t now = fullHour + 1800; // 15:30 in UTC

/// Two hours of a machine that was off for a while in between.
struct Recorded {
    Recorded() {
        MetricsBatch batch;
        for (int64_t minute = -120; minute < 30; ++minute)
            if (minute <= -75 || minute >= -15)
                batch.system[fullHour + minute * 60] = {.seconds = 60,
                                                        .cpuSeconds = 15,
                                                        .peakCPUPercent = minute == 3 ? 97.0 : 30.0,
                                                        .memoryByteSeconds = 60.0 * (3LL << 30),
                                                        .peakMemoryBytes = 4LL << 30,
                                                        .diskReadBytes = 60'000'000};
        for (int64_t hour : {-2, -1, 0})
            batch.apps[fullHour + hour * 3600] = {
                {"/usr/share/applications/web.desktop", {.name = "Web", .seconds = 1800, .cpuSeconds = 200}},
                {"/opt/Mail.app", {.name = "Mail", .seconds = 1800, .cpuSeconds = 50}},
                {"cc", {.name = "cc", .seconds = 10, .cpuSeconds = 100}}};
        store.write(batch);
    }
    HistoryAnswer ask(HistoryQuestion question) {
        if (question.limit == 0) question.limit = 10;
        return readHistory(store, question, wallTime(now));
    }

    quarn::testing::TimeZone zone{"UTC0"};
    quarn::testing::HistoryFolder folder;
    MetricsStore store{folder.file()};
};

/// What `write` prints, parsed.
nlohmann::json parsed(const auto& write) {
    JsonWriter json;
    write(json);
    return nlohmann::json::parse(json.text());
}

TEST(HistoryCommand, PlotsHaveHolesWhereNothingWasRecorded) {
    Recorded recorded;
    const auto answer = recorded.ask({.span = HistorySpan::hour});
    const auto text = seriesText(answer, AppHistoryMetric::cpu, {.columns = 41});
    EXPECT_TRUE(contains(text, "45 min 0 s of the last hour were recorded"));
    EXPECT_TRUE(contains(text, "CPU: at most 97.0 % (Mon 21 Sep, 15:03)\n"
                               "   50.0 % │\n"
                               "          │\n"
                               "          │       ▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄▄\n"
                               "          │       ███████████████████████\n"
                               "    0.0 % │       ███████████████████████\n"
                               "          └       ───────────────────────\n"
                               "           14:30         15:00\n"));
    EXPECT_FALSE(contains(text, "Memory"));

    const auto day =
        seriesText(recorded.ask({.span = HistorySpan::day}), {}, {.columns = 107, .charset = Charset::ascii});
    EXPECT_TRUE(contains(day, " #####  ####\n    0.0 % |"));
    EXPECT_TRUE(contains(day, " -----  ----\n"));
    EXPECT_TRUE(contains(day, "\nReceived: nothing\n"));
    EXPECT_TRUE(contains(day, "\nMemory: at most 4.00 GiB"));
    EXPECT_FALSE(contains(day, "Power")); // never measured

    const auto json = parsed([&](JsonWriter& out) { writeSeries(out, answer); });
    EXPECT_EQ(json["points"].size(), 45U);
    EXPECT_EQ(json["points"][18]["peakCPUPercent"], 97);
    EXPECT_TRUE(json["points"][0]["energyJoules"].is_null());
}

TEST(HistoryCommand, RanksApplications) {
    Recorded recorded;
    const auto answer = recorded.ask({.span = HistorySpan::day, .limit = 2});
    EXPECT_EQ(topText(answer, {}), "Application  Time of one core  Before  Share\n"
                                   "Web                10 min 0 s          ████████████████████\n"
                                   "cc                  5 min 0 s          ██████████\n"
                                   "and 1 more, together 2 min 30 s\n");
    EXPECT_TRUE(contains(topText(recorded.ask({.by = AppHistoryMetric::network}), {}),
                         "Network: no application used any in"));
    const auto json = parsed([&](JsonWriter& out) { writeTop(out, answer); });
    EXPECT_EQ(json["apps"][1]["app"], "cc");
    EXPECT_EQ(json["apps"][0]["total"]["cpuSeconds"], 600);
    EXPECT_TRUE(json["apps"][0]["before"].is_null());
}

TEST(HistoryCommand, FindsApplicationsByNameAndKey) {
    Recorded recorded;
    const auto all = recorded.store.appTotals(0, now);
    const std::pair<const char*, const char*> cases[]{{"web", "Web"}, {"cc", "cc"}, {"/opt/Mail.app", "Mail"},
                                                      {"ai", "Mail"}, {"zzz", ""},  {"", "Web cc Mail"}};
    for (const auto& [name, expected] : cases) {
        std::string names;
        for (const auto& app : appsNamed(all, name)) names += (names.empty() ? "" : " ") + app.metrics.name;
        EXPECT_EQ(names, expected) << name;
    }
    const auto answer = recorded.ask({.span = HistorySpan::day, .app = "/opt/Mail.app"});
    const auto text = appText(answer, {});
    EXPECT_TRUE(contains(text, "Mail, the last day\n  CPU time            2 min 30 s\n"));
    EXPECT_TRUE(contains(text, "at most 2.8 % ")); // 50 of 1,800 seconds
    EXPECT_EQ(parsed([&](JsonWriter& out) { writeApp(out, answer); })["points"].size(), 3U);
}

TEST(HistoryCommand, TotalsTellWhatIsNotKnown) {
    Recorded recorded;
    const auto text = totalsText(recorded.store.recentTotals(wallTime(now)), {});
    EXPECT_TRUE(contains(text, "CPU on average"));
    EXPECT_TRUE(contains(text, "\nEnergy                      —"));
    const auto day = totalsText(recorded.ask({.span = HistorySpan::day}), {});
    EXPECT_TRUE(contains(day, "Disk      5.46 GB  5.46 GB read, 0 B written"));
    const auto json =
        parsed([&](JsonWriter& out) { writeTotals(out, recorded.ask({.span = HistorySpan::week})); });
    EXPECT_EQ(json["total"]["seconds"], 5460);
    EXPECT_TRUE(json["before"]["cpuSeconds"].is_null());
}

} // namespace
} // namespace quarn::cli
