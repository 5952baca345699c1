// Long made-up histories: every tier holds what was recorded as long as it should, and reads count no period
// twice and miss none that is still kept.
#include "history/MetricsStore.h"
#include "history/Support.h"

#include <fmt/format.h>
#include <random>

namespace quarn::testing {
namespace {

constexpr int64_t newYear = 1'767'222'000; // 2026-01-01 0:00 in Berlin

struct Years : ::testing::Test, LedgeredHistory {
    /// Records six hours from `time` on, one minute in each hour, and maintains.
    void record(int64_t time) {
        MetricsBatch batch;
        for (int64_t hour = time; hour < time + 6 * 3600; hour += 3600) {
            const auto bytes = static_cast<int64_t>(random() % 1'000'000);
            batch.system[hour + static_cast<int64_t>(random() % 60) * 60] = minuteOf(bytes);
            batch.apps[hour]["/editor"] = appOf(bytes);
            if (bytes % 3 == 0) batch.apps[hour]["/shell"] = appOf(bytes / 3, "Shell");
        }
        write(batch);
        now = time + 6 * 3600;
        store.maintain(wallTime(now));
    }

    /// What a table holds is what was recorded from its first row to the end of what it covers.
    void check() {
        auto db = folder.look();
        const auto rolledHours = *db.integer("SELECT value FROM meta WHERE key = 'rolled_hours'");
        const auto rolledDays = db.integer("SELECT value FROM meta WHERE key = 'rolled_days'").value_or(0);
        const std::array<int64_t, 5> ends{now, rolledHours, rolledDays, now, rolledDays};
        for (size_t i = 0; i < metricsTables.size(); ++i) {
            const auto& [name, retention] = metricsTables[i];
            const bool isApp = name.starts_with("app");
            const auto first = db.integer(fmt::format("SELECT MIN(start) FROM {}", name));
            if (!first) continue;
            // The oldest row is of the period in which the retention ends, or the first one ever.
            EXPECT_GE(*first, now - retention) << name;
            EXPECT_LE(*first, std::max(now - retention + day + 12 * 3600, firstEver + day)) << name;
            const auto sum =
                db.integer(fmt::format("SELECT SUM(disk_{}_bytes) FROM {}", isApp ? "write" : "read", name));
            const auto apps = ledger.appTotals(*first, ends[i]);
            const int64_t expected =
                !isApp ? ledger.total(*first, ends[i]).diskReadBytes
                       : apps.at("/editor").diskWriteBytes + apps.at("/shell").diskWriteBytes;
            EXPECT_EQ(sum, expected) << name << " after " << (now - newYear) / day << " days";
        }
    }

    std::minstd_rand random{7};
    int64_t now = newYear;
    int64_t firstEver = newYear;
};

TEST_F(Years, EveryTierHoldsWhatWasRecorded) {
    for (int64_t time = newYear; time < newYear + 2 * 365 * day; time += 6 * 3600) {
        record(time);
        if ((time - newYear) / (6 * 3600) % 300 == 299) check();
    }
    check();

    auto db = folder.look();
    auto& days = db.statement("SELECT start FROM system_1d ORDER BY start");
    std::map<int64_t, int> lengths;
    int64_t previous = 0;
    while (days.step()) {
        if (previous != 0) ++lengths[(days.integer(0) - previous) / 3600];
        previous = days.integer(0);
    }
    EXPECT_EQ(lengths, (std::map<int64_t, int>{{23, 2}, {24, 725}, {25, 2}}));
}

TEST_F(Years, AlsoWhenTheMachineTravelsAndRests) {
    const std::array<const char*, 4> zones{kolkata, losAngeles, berlin, "UTC0"};
    int64_t time = newYear;
    for (int stay = 0; stay < 24; ++stay) {
        TimeZone::set(zones[random() % zones.size()]);
        for (auto days = 1 + random() % 9; days > 0; --days)
            for (int quarter = 0; quarter < 4; ++quarter, time += 6 * 3600) record(time);
        if (stay % 3 == 0) time += static_cast<int64_t>(random() % 80) * 11 * 3600; // up to 36 days off
        // Where a day ends within an hour, the whole hour is in it.
        const auto rolled =
            roundedUp(folder.number("SELECT value FROM meta WHERE key = 'rolled_days'"), hourSeconds);
        EXPECT_EQ(folder.number("SELECT SUM(disk_read_bytes) FROM system_1d"),
                  ledger.total(0, rolled).diskReadBytes)
            << stay;
        const auto first = folder.number("SELECT MIN(start) FROM app_1d");
        EXPECT_EQ(folder.number("SELECT SUM(disk_write_bytes) FROM app_1d WHERE app_id = '/editor'"),
                  ledger.appTotals(first, rolled).at("/editor").diskWriteBytes)
            << stay;
        EXPECT_EQ(store.systemTotals(newYear - 2 * day, now), ledger.total(newYear, now)) << stay;
    }
}

constexpr int64_t march = 1'772'319'600; // 2026-03-01 0:00 in Berlin, so that summer time begins within

class RandomHistory : public LedgeredHistory {
public:
    explicit RandomHistory(uint32_t seed) : random_(seed) {
        const auto span = static_cast<int64_t>(1 + below(130)) * day;
        const int64_t end = march + span + static_cast<int64_t>(below(day));
        const auto between = static_cast<int64_t>(1 + below(60)) * 3600; // from one maintenance to the next
        int64_t maintained = march;
        for (now = march; now < end; now += 3600) {
            if (below(10) < 3) continue; // the machine is off
            MetricsBatch batch;
            for (auto minutes = below(3); minutes > 0; --minutes)
                batch.system[now + static_cast<int64_t>(below(60)) * 60] = minuteOf(bytes());
            batch.apps[now][below(2) ? "/a" : "/b"] = appOf(bytes());
            if (below(200) == 0) // the clock is set back for a moment
                batch.system[std::max(march, now - static_cast<int64_t>(below(3 * day)) / 60 * 60)] =
                    minuteOf(bytes());
            write(batch);
            if (now - maintained < between) continue;
            store.maintain(wallTime(now));
            maintained = now;
        }
        if (below(2)) store.maintain(wallTime(now));
    }

    uint64_t below(uint64_t end) { return random_() % end; }

    int64_t now = march;

private:
    int64_t bytes() { return static_cast<int64_t>(1 + below(1'000'000)); }
    std::mt19937 random_;
};

template <class Points>
auto sumOf(const Points& points) {
    decltype(points.front().metrics) sum;
    for (const auto& point : points) mergeInto(sum, point.metrics);
    return sum;
}

/// A random range that begins where the rows of every tier begin that have to answer for it: at any second in
/// the last week, at a full hour in the last month, at a day before.
std::pair<int64_t, int64_t> randomRange(RandomHistory& history) {
    const Calendar calendar;
    const int64_t now = history.now;
    int64_t from = now - static_cast<int64_t>(history.below(static_cast<uint64_t>(now - march) + 1));
    const auto granule = [&](int64_t time) {
        if (time >= now - 6 * day) return time;
        return time >= now - 29 * day ? roundedDown(time, hourSeconds) : calendar.startOfDay(time);
    };
    from = std::max(march, granule(from));
    const int64_t to =
        history.below(2) ? now + 1 : granule(from + static_cast<int64_t>(history.below(40 * day)));
    return {from, std::max(from, to)};
}

TEST(MetricsReads, CountEachPeriodOnce) {
    for (uint32_t seed = 1; seed <= 30; ++seed) {
        RandomHistory history(seed);
        auto& store = history.store;
        for (int i = 0; i < 12; ++i) {
            const auto [from, to] = randomRange(history);
            SCOPED_TRACE(::testing::Message()
                         << "seed " << seed << ", from " << from << " to " << to << ", now " << history.now);
            const auto expected = history.ledger.total(from, to);
            ASSERT_EQ(store.systemTotals(from, to), expected);
            ASSERT_EQ(sumOf(store.systemPoints(MetricsResolution::minute, from, to)), expected);
            const int64_t fromHour = roundedDown(from, hourSeconds), toHour = roundedUp(to, hourSeconds);
            ASSERT_EQ(sumOf(store.systemPoints(MetricsResolution::hour, fromHour, toHour)),
                      history.ledger.total(fromHour, toHour));
            ASSERT_EQ(sumOf(store.systemPoints(MetricsResolution::day, fromHour, toHour)),
                      history.ledger.total(fromHour, toHour));

            const auto apps = history.ledger.appTotals(from, to);
            ASSERT_EQ(byApp(store.appTotals(from, to)), apps);
            const auto found = apps.find("/a");
            const auto app = found == apps.end() ? AppMetrics() : found->second;
            for (const auto step : {MetricsStore::AppSeriesStep::byHour, MetricsStore::AppSeriesStep::byDay})
                ASSERT_EQ(sumOf(store.appSeries("/a", from, to, step)), app) << static_cast<int>(step);
        }
    }
}

TEST(MetricsReads, AreAsFineAsTheRowsThatAreKept) {
    LedgeredHistory history;
    auto& store = history.store;
    TimeZone::set(kolkata); // days do not begin at full hours of universal time
    const Calendar calendar;
    const int64_t now = march + 200 * day;
    for (int64_t hour = march; hour < now; hour += 3600) {
        store.write({{{hour, minuteOf(1)}, {hour + 1800, minuteOf(2)}}, {{hour, {{"/a", appOf(1)}}}}});
        if (hour % (10 * day) == 0) store.maintain(wallTime(hour));
    }
    store.maintain(wallTime(now));
    store.write({{{now, minuteOf(4)}}, {}}); // not rolled up yet

    const auto lengths = [&](MetricsResolution resolution, int64_t span) {
        std::map<int64_t, size_t> gaps; // by the time to the point before
        int64_t previous = 0;
        for (const auto& point : store.systemPoints(resolution, now - span, now + 1)) {
            if (previous != 0) ++gaps[point.start - previous];
            EXPECT_GT(point.start, previous);
            previous = point.start;
        }
        return gaps;
    };
    EXPECT_EQ(lengths(MetricsResolution::minute, 3 * day), (std::map<int64_t, size_t>{{1800, 144}}));
    EXPECT_EQ(lengths(MetricsResolution::hour, 30 * day), (std::map<int64_t, size_t>{{3600, 720}}));
    const auto counts = lengths(MetricsResolution::minute, 150 * day);
    EXPECT_GE(counts.at(1800), 2 * 24 * 7u - 4);
    EXPECT_GE(counts.at(3600), 24 * 80u);
    EXPECT_GE(counts.at(day), 59u);
    for (const auto& point : store.systemPoints(MetricsResolution::day, now - 30 * day, now + 1))
        EXPECT_EQ(point.start, calendar.startOfDay(point.start));

    const int64_t midnight = calendar.startOfDay(now);
    const auto recent = store.recentTotals(wallTime(now));
    EXPECT_EQ(recent.today.diskReadBytes,
              (now - midnight) / 3600 * 3 + 2 + 4); // the half hour after midnight
    EXPECT_EQ(recent.lastWeek.diskReadBytes, 7 * 24 * 3 + 4);
    EXPECT_EQ(recent.lastMonth.diskReadBytes, 30 * 24 * 3 + 4);
}

} // namespace
} // namespace quarn::testing
