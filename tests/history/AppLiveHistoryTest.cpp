#include "history/LiveSupport.h"
#include "support/Joined.h"

namespace quarn::testing {
namespace {

AppActivity active(const char* app, uint64_t cpuMs, uint64_t memBytes = 100) {
    return {app, memBytes, {cpuMs * 1'000'000, 0, 0, 0, 0, false}};
}

double cpuOf(const AppLiveHistory& apps, int64_t at, std::string_view app) {
    for (const auto& total : apps.totals(wallTime(at), AppHistoryMetric::cpu, 100))
        if (total.bundlePath == app) return total.metrics.cpuSeconds;
    return -1;
}

TEST(AppLiveHistory, AddsUpTheLastHalfHour) {
    AppLiveHistory apps;
    const auto add = [&](int64_t at, std::vector<AppActivity> list) { apps.add(wallTime(at), list); };
    add(liveNow, {active("a", 9000)}); // the first list only says who is there
    EXPECT_EQ(cpuOf(apps, liveNow, "a"), -1);
    add(liveNow + 1, {active("a", 1000), active("b", 3000, 500)});
    add(liveNow + 61, {active("a", 4000)});
    std::string totals;
    for (const auto& [app, used] : apps.totals(wallTime(liveNow + 61), AppHistoryMetric::cpu, 100))
        totals += joined(app, used.cpuSeconds, used.seconds, used.peakMemoryBytes) + ' ';
    EXPECT_EQ(totals, "a|5|61|100 b|3|1|500 ");
    EXPECT_EQ(apps.totals(wallTime(liveNow + 61), AppHistoryMetric::memory, 1)[0].bundlePath, "b");

    const auto minutes = apps.minutesOf("b", wallTime(liveNow + 61));
    ASSERT_EQ(minutes.size(), 2u);
    EXPECT_EQ(minutes[0].metrics.cpuSeconds, 3);
    EXPECT_EQ(minutes[1].start, liveNow + 60);
    EXPECT_EQ(minutes[1].metrics.cpuSeconds, 0) << "it was not there any more";
    EXPECT_EQ(minutes[1].observed, 60);
    EXPECT_EQ(apps.minutesOf("b", wallTime(liveNow + 1860)).size(), 1u);

    add(liveNow + 200, {active("a", 8000)}); // after a hole nobody knows when it was used
    EXPECT_EQ(cpuOf(apps, liveNow + 200, "a"), 5);
    EXPECT_EQ(cpuOf(apps, liveNow + 1860, "b"), -1);
    EXPECT_EQ(cpuOf(apps, liveNow + 1860, "a"), 4);
    for (int64_t at = 200; at <= 4000; at += 20) add(liveNow + at, {active("c", 10)});
    EXPECT_LE(apps.minutes().size(), 32u);
    add(liveNow + 3000, {active("c", 10)}); // the clock is set back: no hole, and still in order
    add(liveNow + 3020, {active("c", 10)});
    EXPECT_EQ(apps.minutes().back().start, liveNow + 3000);
    EXPECT_TRUE(std::is_sorted(apps.minutes().begin(), apps.minutes().end(),
                               [](const auto& a, const auto& b) { return a.start < b.start; }));
}

TEST(AppLiveHistory, RestoresWhatIsNotTooOld) {
    const AppLiveHistory saved = twoApps(); // in the minutes of liveNow and liveNow + 60
    AppLiveHistory apps;
    apps.add(wallTime(liveNow + 95), std::vector{active("/apps/editor", 0)});
    apps.add(wallTime(liveNow + 100), std::vector{active("/apps/editor", 500)});
    EXPECT_EQ(apps.unnamedApps().size(), 1u);
    apps.restore(saved, wallTime(liveNow + 100));
    EXPECT_EQ(apps.minutes().size(), 2u); // the program began anew within a minute
    EXPECT_EQ(cpuOf(apps, liveNow + 100, "/apps/editor"), 6.5);
    EXPECT_EQ(apps.totals(wallTime(liveNow + 100), AppHistoryMetric::cpu, 1)[0].metrics.name, "Editor");
    EXPECT_TRUE(apps.unnamedApps().empty());
    apps.add(wallTime(liveNow + 110), std::vector{active("/apps/editor", 500)});
    EXPECT_EQ(cpuOf(apps, liveNow + 110, "/apps/editor"), 7);

    AppLiveHistory late;
    late.restore(saved, wallTime(liveNow + 1861));
    EXPECT_EQ(late.minutes().size(), 1u);
    AppLiveHistory early; // the clock was wrong
    early.restore(saved, wallTime(liveNow - 1000));
    EXPECT_TRUE(early.minutes().empty());
}

} // namespace
} // namespace quarn::testing
