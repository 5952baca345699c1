#include "history/MetricsStore.h"

#include "history/HistoryFiles.h"
#include "history/MetricsMarks.h"
#include "history/MetricsRollup.h"
#include "history/MetricsRows.h"

#include <fmt/format.h>

namespace quarn {

namespace {

/// The file, which SQLite would make readable for everybody.
std::string prepared(const std::filesystem::path& file, MetricsStore::Access access) {
    if (access == MetricsStore::Access::writing) makePrivateFile(file);
    return file.string();
}

} // namespace

MetricsStore::MetricsStore(const std::filesystem::path& file, Access access, Calendar calendar)
    : calendar_(calendar), db_(prepared(file, access), access) {
    const auto version = db_.integer("PRAGMA user_version").value_or(0);
    constexpr auto known = static_cast<int64_t>(metricsSchemaVersion);
    if (version > known) // before anything is written to it
        throw SQLiteError(fmt::format("metrics history schema {} is newer than this version of the app ({})",
                                      version, known));
    if (access == Access::writing) {
        db_.execute(metrics_sql::connectionSettings);
        migrate();
    } else if (version < known)
        throw SQLiteError(fmt::format("metrics history schema {} has not been brought up to date", version));
    db_.statement(metrics_sql::upsert(Table::system_1m)); // fails now when the tables are not those
    db_.statement(metrics_sql::upsert(Table::app_1h));
}

void MetricsStore::migrate() {
    const auto& migrations = metricsMigrations();
    for (auto i = static_cast<size_t>(db_.integer("PRAGMA user_version").value_or(0)); i < migrations.size();
         ++i)
        db_.transaction([&] {
            db_.execute(migrations[i]);
            db_.execute(fmt::format("PRAGMA user_version = {}", i + 1));
        });
}

void MetricsStore::put(Table table, int64_t start, const SystemMetrics& metrics) {
    auto& row = db_.statement(metrics_sql::upsert(table));
    row.bind(1, start);
    bindMetrics(row, 2, metrics);
    row.run();
}

void MetricsStore::put(Table table, int64_t start, std::string_view app, const AppMetrics& metrics) {
    auto& row = db_.statement(metrics_sql::upsert(table));
    row.bind(1, start);
    row.bind(2, app);
    bindMetrics(row, 3, metrics);
    row.run();
}

void MetricsStore::write(const MetricsBatch& batch) {
    db_.transaction([&] {
        const auto marks = readMarks(db_);
        for (const auto& [minute, metrics] : batch.system) {
            put(Table::system_1m, minute, metrics);
            addLate(marks, roundedDown(minute, hourSeconds), metrics);
        }
        for (const auto& [hour, apps] : batch.apps) {
            const bool late = marks.coverDay(hour);
            const auto day = late ? dayRowOf(db_, calendar_, Table::app_1d, hour) : 0;
            for (const auto& [app, metrics] : apps) {
                put(Table::app_1h, hour, app, metrics);
                if (late) put(Table::app_1d, day, app, metrics);
            }
        }
    });
}

/// What belongs to an hour that was rolled up before, as the clock was set back since, is added there too.
void MetricsStore::addLate(const MetricsMarks& marks, int64_t hour, const SystemMetrics& metrics) {
    if (!marks.coverHour(hour)) return;
    put(Table::system_1h, hour, metrics);
    if (marks.coverDay(hour))
        put(Table::system_1d, dayRowOf(db_, calendar_, Table::system_1d, hour), metrics);
}

void MetricsStore::maintain(WallTime now) {
    db_.transaction([&] { rollUpMetrics(db_, calendar_, unixSeconds(now)); });
}

std::optional<int64_t> MetricsStore::newestRecord() {
    return db_.integer("SELECT MAX(start) FROM system_1m");
}

std::optional<WallTime> MetricsStore::lastVacuum() {
    const auto time = readMark(db_, MetricsKey::vacuumedAt);
    return time ? std::optional(wallTime(*time)) : std::nullopt;
}

void MetricsStore::vacuum(WallTime now) {
    db_.execute("PRAGMA incremental_vacuum; PRAGMA wal_checkpoint(TRUNCATE);");
    writeMark(db_, MetricsKey::vacuumedAt, unixSeconds(now));
}

void MetricsStore::clear() {
    db_.transaction([&] {
        for (const auto& table : metricsTables) db_.execute(fmt::format("DELETE FROM {}", table.name));
        db_.execute("DELETE FROM meta WHERE key IN ('rolled_hours', 'rolled_days')");
    });
}

} // namespace quarn
