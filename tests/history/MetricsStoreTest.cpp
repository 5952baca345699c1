#include "history/MetricsStore.h"

#include "history/Support.h"

#include <fmt/format.h>

namespace quarn::testing {
namespace {

constexpr int64_t midnight = 1'790'000'000 - 1'790'000'000 % day; // a midnight of universal time

TEST(MetricsStore, MergesPartsOfAPeriod) {
    const HistoryFolder folder;
    MetricsStore store(folder.file());
    store.write({{{midnight, minuteOf(100)}}, {{midnight, {{"/a", appOf(100, "")}, {"/b", appOf(3, "B")}}}}});
    store.write({{{midnight, minuteOf(7)}}, {{midnight, {{"/a", appOf(7, "Editor")}}}}});

    auto sum = minuteOf(100);
    mergeInto(sum, minuteOf(7));
    EXPECT_EQ(store.systemTotals(midnight, midnight + 1), sum);
    const auto apps = byApp(store.appTotals(midnight, midnight + 1));
    EXPECT_EQ(apps.at("/a").name, "Editor");
    EXPECT_EQ(apps.at("/a").diskWriteBytes, 107);
    EXPECT_EQ(apps.at("/a").peakMemoryBytes, 100);
    EXPECT_EQ(apps.at("/b"), appOf(3, "B"));
    EXPECT_EQ(folder.number("PRAGMA auto_vacuum"), 2);
    auto other = folder.look();
    auto& mode = other.statement("PRAGMA journal_mode");
    ASSERT_TRUE(mode.step());
    EXPECT_EQ(mode.text(0), "wal");
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder.file()).permissions(), perms::owner_read | perms::owner_write);
}

TEST(MetricsStore, OneMadCounterDoesNotEndTheHistory) {
    const HistoryFolder folder;
    MetricsStore store(folder.file());
    constexpr auto mad = std::numeric_limits<int64_t>::max();
    auto broken = minuteOf(mad);
    broken.cpuSeconds = std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < 120; ++i)
        store.write({{{midnight + i * 60, broken}}, {{midnight + i / 60 * 3600, {{"/a", appOf(mad)}}}}});
    store.maintain(wallTime(midnight + 2 * day)); // SQLite refuses sums that overflow
    EXPECT_EQ(folder.number("SELECT COUNT(*) FROM system_1d"), 1);
    EXPECT_GT(store.systemTotals(midnight, midnight + day).diskReadBytes, 0);
}

/// The tables as each version of the program made them.
std::string schemaOfVersion(int version) {
    std::string sql;
    for (const char* table : {"system_1m", "system_1h", "system_1d"})
        sql += fmt::format(
            "CREATE TABLE {} (start INTEGER PRIMARY KEY, seconds REAL NOT NULL, cpu_seconds REAL NOT "
            "NULL, peak_cpu_percent REAL NOT NULL, mem_byte_seconds REAL NOT NULL, peak_mem_bytes "
            "INTEGER NOT NULL, peak_swap_bytes INTEGER NOT NULL, disk_read_bytes INTEGER NOT NULL, "
            "disk_write_bytes INTEGER NOT NULL, net_in_bytes INTEGER NOT NULL, net_out_bytes INTEGER "
            "NOT NULL, energy_joules REAL NOT NULL, power_seconds REAL NOT NULL) WITHOUT ROWID;",
            table);
    const std::string network =
        ", net_in_bytes INTEGER NOT NULL DEFAULT 0, net_out_bytes INTEGER NOT NULL DEFAULT 0";
    for (const char* table : {"app_1h", "app_1d"})
        sql += fmt::format(
            "CREATE TABLE {} (start INTEGER NOT NULL, app_id TEXT NOT NULL, name TEXT NOT NULL, seconds "
            "REAL NOT NULL, cpu_seconds REAL NOT NULL, mem_byte_seconds REAL NOT NULL, peak_mem_bytes "
            "INTEGER NOT NULL, disk_read_bytes INTEGER NOT NULL, disk_write_bytes INTEGER NOT NULL, "
            "energy_impact REAL NOT NULL{}{}, PRIMARY KEY (start, app_id)) WITHOUT ROWID;",
            table, version >= 2 ? network : "",
            version >= 3 ? ", energy_joules REAL NOT NULL DEFAULT 0" : "");
    return sql + fmt::format("CREATE TABLE meta (key TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;"
                             "PRAGMA user_version = {};",
                             version);
}

TEST(MetricsStore, BringsEveryOlderVersionUpToDate) {
    for (int version = 1; version <= 3; ++version) {
        const HistoryFolder folder;
        {
            SQLiteConnection old(folder.file().string());
            old.execute(schemaOfVersion(version));
            for (const char* table : {"app_1h", "app_1d"}) {
                for (const char* app : {"'/a', 'Editor', 60", "'/b', 'Shell', 70"})
                    old.execute(
                        fmt::format("INSERT INTO {} (start, app_id, name, seconds, cpu_seconds, "
                                    "mem_byte_seconds, peak_mem_bytes, disk_read_bytes, "
                                    "disk_write_bytes, energy_impact) VALUES ({}, {}, 1, 2, 3, 4, 5, 6)",
                                    table, midnight, app));
                if (version == 3)
                    old.execute(fmt::format("UPDATE {} SET energy_joules = 9 WHERE app_id = '/b'", table));
            }
        }
        EXPECT_THROW(MetricsStore(folder.file(), MetricsStore::Access::reading), SQLiteError);
        MetricsStore store(folder.file());
        EXPECT_EQ(folder.number("PRAGMA user_version"), 4);
        store.write({{}, {{midnight, {{"/a", appOf(1)}}}}});
        const auto apps = byApp(store.appTotals(midnight, midnight + 1));
        EXPECT_EQ(apps.at("/a").diskWriteBytes, 6);
        EXPECT_EQ(apps.at("/a").energySeconds, 0);
        EXPECT_EQ(apps.at("/b").energySeconds, version == 3 ? 70 : 0) << version;
        EXPECT_EQ(folder.number("SELECT energy_seconds FROM app_1d WHERE app_id = '/b'"),
                  version == 3 ? 70 : 0);
    }
}

TEST(MetricsStore, AMigrationThatFailsLeavesTheVersionBefore) {
    const HistoryFolder folder;
    SQLiteConnection(folder.file().string())
        .execute(schemaOfVersion(1) + "ALTER TABLE app_1d ADD COLUMN energy_joules REAL");
    EXPECT_THROW(MetricsStore(folder.file()), SQLiteError);
    EXPECT_EQ(folder.number("PRAGMA user_version"), 2);
    EXPECT_EQ(folder.number("SELECT COUNT(*) FROM pragma_table_info('app_1h') WHERE name = 'energy_joules'"),
              0);
}

TEST(MetricsStore, RefusesANewerVersionUntouched) {
    const HistoryFolder folder;
    SQLiteConnection(folder.file().string()).execute("CREATE TABLE x (y); PRAGMA user_version = 5");
    const auto before = readFile(folder.file());
    for (const auto access : {MetricsStore::Access::writing, MetricsStore::Access::reading})
        EXPECT_EQ(failureOf([&] { MetricsStore(folder.file(), access); }),
                  "metrics history schema 5 is newer than this version of the app (4)");
    EXPECT_EQ(readFile(folder.file()), before);
}

TEST(MetricsStore, AnEmptyDatabaseRollsNothingAndAClearedOneBeginsAnew) {
    const HistoryFolder folder;
    MetricsStore store(folder.file());
    store.maintain(wallTime(midnight));
    EXPECT_EQ(folder.number("SELECT COUNT(*) FROM meta"), 0);
    EXPECT_FALSE(store.lastVacuum());

    store.write({{{midnight, minuteOf(5)}}, {{midnight, {{"/a", appOf(5)}}}}});
    store.maintain(wallTime(midnight + 2 * day));
    store.vacuum(wallTime(midnight + 2 * day));
    store.clear();
    EXPECT_EQ(store.systemTotals(0, midnight + 3 * day), SystemMetrics());
    EXPECT_TRUE(store.appTotals(0, midnight + 3 * day).empty());
    EXPECT_EQ(store.lastVacuum(), wallTime(midnight + 2 * day));

    store.write({{{midnight + 60, minuteOf(6)}}, {}}); // older than what was rolled up before
    store.maintain(wallTime(midnight + 3 * day));
    EXPECT_EQ(folder.number("SELECT disk_read_bytes FROM system_1d"), 6);
}

TEST(MetricsStore, WhatArrivesLateIsInEveryTier) {
    LedgeredHistory history;
    auto& [disk, folder, zone, store, ledger] = history;
    const auto write = [&](int64_t time, int64_t bytes) {
        history.write(
            {{{time, minuteOf(bytes)}}, {{roundedDown(time, hourSeconds), {{"/a", appOf(bytes)}}}}});
    };
    for (int hour = 0; hour < 96; ++hour) write(midnight + hour * 3600, 1 + hour);
    store.maintain(wallTime(midnight + 4 * day));
    // The clock is set back: by an hour, by two days, to before everything, and the same minute once more.
    for (const int64_t late : {95 * 3600, 30 * 3600 + 60, -10 * 3600, 30 * 3600}) {
        write(midnight + late, 1000);
        EXPECT_EQ(store.systemTotals(midnight - day, midnight + 5 * day),
                  ledger.total(0, midnight + 5 * day));
        store.maintain(wallTime(midnight + late + 3600));
        store.maintain(wallTime(midnight + 6 * day));
        for (const char* tier : {"1h", "1d"}) {
            SCOPED_TRACE(fmt::format("{} {}", tier, late));
            EXPECT_EQ(folder.number(fmt::format("SELECT SUM(disk_read_bytes) FROM system_{}", tier)),
                      ledger.total(0, midnight + 5 * day).diskReadBytes);
            EXPECT_EQ(folder.number(fmt::format("SELECT SUM(disk_write_bytes) FROM app_{}", tier)),
                      ledger.appTotals(0, midnight + 5 * day)["/a"].diskWriteBytes);
        }
    }
}

TEST(MetricsReads, RanksByEachMeasure) {
    const std::vector<AppTotal> apps{
        {"/a", {.name = "", .seconds = 1, .cpuSeconds = 1, .diskWriteBytes = 5, .networkInBytes = 1}},
        {"/b", {.name = "", .seconds = 10, .memoryByteSeconds = 100, .diskWriteBytes = 9, .energyImpact = 1}},
        {"/c", {.name = "", .seconds = 100, .memoryByteSeconds = 500, .diskWriteBytes = 9}}};
    const std::map<AppHistoryMetric, std::string> first{{AppHistoryMetric::cpu, "/a"},
                                                        {AppHistoryMetric::memory, "/b"},
                                                        {AppHistoryMetric::disk, "/b"}, // before its equal
                                                        {AppHistoryMetric::energy, "/b"},
                                                        {AppHistoryMetric::network, "/a"}};
    for (const auto& [metric, app] : first) {
        auto ranked = apps;
        rankApps(ranked, metric, 2);
        ASSERT_EQ(ranked.size(), 2u);
        EXPECT_EQ(ranked[0].bundlePath, app) << static_cast<int>(metric);
    }
}

} // namespace
} // namespace quarn::testing
