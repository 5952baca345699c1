// Two years in a few seconds: whatever happened, every tier holds what was recorded, as long as it should.
#include "history/MetricsStore.h"
#include "history/Support.h"
#include "support/FaultVfs.h"

#include <random>

#include <fmt/format.h>

namespace quarn {
namespace {

using testing::appOf;
using testing::day;
using testing::minuteOf;

constexpr int64_t newYear = 1'767'222'000; // 2026-01-01 0:00 in Berlin

class Years : public ::testing::Test {
protected:
    /// Records six hours from `time` on, one minute in each hour, and maintains.
    void record(int64_t time) {
        MetricsBatch batch;
        for (int64_t hour = time; hour < time + 6 * 3600; hour += 3600) {
            const auto bytes = static_cast<int64_t>(random() % 1'000'000);
            batch.system[hour + static_cast<int64_t>(random() % 60) * 60] = minuteOf(bytes);
            batch.apps[hour]["/editor"] = appOf(bytes);
            if (bytes % 3 == 0) batch.apps[hour]["/shell"] = appOf(bytes / 3, "Shell");
        }
        store.write(batch);
        ledger.note(batch);
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

    testing::FaultVfs quickDisk;
    testing::HistoryFolder folder;
    testing::TimeZone zone{testing::berlin};
    std::minstd_rand random{7};
    MetricsStore store{folder.file()};
    testing::Ledger ledger;
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
    const std::array<const char*, 4> zones{testing::kolkata, testing::losAngeles, testing::berlin, "UTC0"};
    int64_t time = newYear;
    for (int stay = 0; stay < 24; ++stay) {
        testing::TimeZone::set(zones[random() % zones.size()]);
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

} // namespace
} // namespace quarn
