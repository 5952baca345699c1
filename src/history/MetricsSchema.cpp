#include "history/MetricsSchema.h"

#include <fmt/format.h>

namespace quarn {

namespace {

using namespace std::string_view_literals;

/// The parts that `part` makes of each value column, joined with ", ".
template <class Metrics, class Part>
std::string joined(const Part& part) {
    std::string list;
    for (const auto& field : MetricsFields<Metrics>::all) {
        if (!list.empty()) list += ", ";
        list += part(field.column);
    }
    return list;
}

template <class Metrics>
std::string names() {
    return joined<Metrics>([](const MetricsColumn& column) { return std::string(column.name); });
}

template <class Metrics>
std::string aggregates() {
    return joined<Metrics>([](const MetricsColumn& column) {
        return fmt::format("{0}({1}) AS {1}", column.merge == MetricsMerge::sum ? "SUM" : "MAX", column.name);
    });
}

std::string assignment(const MetricsColumn& column) {
    switch (column.merge) {
    case MetricsMerge::sum: return fmt::format("{0} = {0} + excluded.{0}", column.name);
    case MetricsMerge::max: return fmt::format("{0} = MAX({0}, excluded.{0})", column.name);
    case MetricsMerge::latest: break;
    }
    return fmt::format("{0} = excluded.{0}", column.name);
}

template <class Metrics>
std::string upsertInto(MetricsTable table, std::string_view keys, std::string_view keyMarks) {
    return fmt::format("INSERT INTO {} ({}, {}) VALUES ({}, {}) ON CONFLICT({}) DO UPDATE SET {}",
                       traits(table).name, keys, names<Metrics>(), keyMarks,
                       joined<Metrics>([](const MetricsColumn&) { return "?"sv; }), keys,
                       joined<Metrics>(assignment));
}

/// One text for each table, made by `make`.
template <class Make>
std::array<std::string, metricsTables.size()> eachTable(const Make& make) {
    std::array<std::string, metricsTables.size()> texts;
    for (size_t i = 0; i < texts.size(); ++i) texts[i] = make(static_cast<MetricsTable>(i));
    return texts;
}

bool isAppTable(MetricsTable table) { return table >= MetricsTable::app_1h; }

std::string selectMinutesByHour() {
    return fmt::format("SELECT (start / 3600) * 3600, {} FROM system_1m\n"
                       "WHERE start >= ?1 AND start < ?2 GROUP BY start / 3600",
                       aggregates<SystemMetrics>());
}

constexpr std::string_view systemTableDdl =
    "CREATE TABLE {} (start INTEGER PRIMARY KEY, seconds REAL NOT NULL, cpu_seconds REAL NOT NULL, "
    "peak_cpu_percent REAL NOT NULL, mem_byte_seconds REAL NOT NULL, peak_mem_bytes INTEGER NOT NULL, "
    "peak_swap_bytes INTEGER NOT NULL, disk_read_bytes INTEGER NOT NULL, disk_write_bytes INTEGER NOT NULL, "
    "net_in_bytes INTEGER NOT NULL, net_out_bytes INTEGER NOT NULL, energy_joules REAL NOT NULL, "
    "power_seconds REAL NOT NULL) WITHOUT ROWID;\n";
constexpr std::string_view appTableDdl =
    "CREATE TABLE {} (start INTEGER NOT NULL, app_id TEXT NOT NULL, name TEXT NOT NULL, "
    "seconds REAL NOT NULL, cpu_seconds REAL NOT NULL, mem_byte_seconds REAL NOT NULL, "
    "peak_mem_bytes INTEGER NOT NULL, disk_read_bytes INTEGER NOT NULL, disk_write_bytes INTEGER NOT NULL, "
    "energy_impact REAL NOT NULL, PRIMARY KEY (start, app_id)) WITHOUT ROWID;\n";

std::string firstTables() {
    std::string script;
    for (const auto* table : {"system_1m", "system_1h", "system_1d"})
        script += fmt::format(systemTableDdl, table);
    for (const auto* table : {"app_1h", "app_1d"}) script += fmt::format(appTableDdl, table);
    return script + "CREATE TABLE meta (key TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;";
}

} // namespace

const std::array<std::string, metricsSchemaVersion>& metricsMigrations() {
    static const std::array<std::string, metricsSchemaVersion> scripts{
        firstTables(),
        "ALTER TABLE app_1h ADD COLUMN net_in_bytes INTEGER NOT NULL DEFAULT 0;\n"
        "ALTER TABLE app_1h ADD COLUMN net_out_bytes INTEGER NOT NULL DEFAULT 0;\n"
        "ALTER TABLE app_1d ADD COLUMN net_in_bytes INTEGER NOT NULL DEFAULT 0;\n"
        "ALTER TABLE app_1d ADD COLUMN net_out_bytes INTEGER NOT NULL DEFAULT 0;",
        "ALTER TABLE app_1h ADD COLUMN energy_joules REAL NOT NULL DEFAULT 0;\n"
        "ALTER TABLE app_1d ADD COLUMN energy_joules REAL NOT NULL DEFAULT 0;",
        // Rows from before the column had energy figures for their whole duration.
        "ALTER TABLE app_1h ADD COLUMN energy_seconds REAL NOT NULL DEFAULT 0;\n"
        "ALTER TABLE app_1d ADD COLUMN energy_seconds REAL NOT NULL DEFAULT 0;\n"
        "UPDATE app_1h SET energy_seconds = seconds WHERE energy_joules > 0;\n"
        "UPDATE app_1d SET energy_seconds = seconds WHERE energy_joules > 0;"};
    return scripts;
}

namespace metrics_sql {

const char* const connectionSettings = "PRAGMA auto_vacuum = INCREMENTAL;\n"
                                       "PRAGMA journal_mode = WAL;\n"
                                       "PRAGMA synchronous = NORMAL;\n"
                                       "PRAGMA cache_size = -512;\n"
                                       "PRAGMA journal_size_limit = 1048576;";

const std::string& upsert(MetricsTable table) {
    static const auto texts = eachTable([](MetricsTable each) {
        return isAppTable(each) ? upsertInto<AppMetrics>(each, "start, app_id", "?, ?")
                                : upsertInto<SystemMetrics>(each, "start", "?");
    });
    return texts[static_cast<size_t>(table)];
}

const std::string& deleteOlder(MetricsTable table) {
    static const auto texts = eachTable(
        [](MetricsTable each) { return fmt::format("DELETE FROM {} WHERE start < ?", traits(each).name); });
    return texts[static_cast<size_t>(table)];
}

const std::string& rollHours() {
    static const auto text = fmt::format("INSERT OR REPLACE INTO system_1h (start, {})\n{}",
                                         names<SystemMetrics>(), selectMinutesByHour());
    return text;
}

const std::string& readMinutesByHour() {
    static const auto text = selectMinutesByHour() + " ORDER BY 1";
    return text;
}

const std::string& rollSystemDay() {
    static const auto text =
        fmt::format("INSERT OR REPLACE INTO system_1d (start, {0})\n"
                    "SELECT start, {0} FROM (\n"
                    "SELECT ?1 AS start, {1}, COUNT(*) AS n FROM system_1h WHERE start >= ?1 AND start < ?2\n"
                    ") WHERE n > 0",
                    names<SystemMetrics>(), aggregates<SystemMetrics>());
    return text;
}

const std::string& rollAppDay() {
    static const auto text =
        fmt::format("INSERT OR REPLACE INTO app_1d (start, app_id, {})\n"
                    "SELECT ?1, app_id, {} FROM app_1h WHERE start >= ?1 AND start < ?2 GROUP BY app_id",
                    names<AppMetrics>(), aggregates<AppMetrics>());
    return text;
}

const std::string& readSystem(MetricsTable table) {
    static const auto texts = eachTable([](MetricsTable each) {
        return fmt::format("SELECT start, {} FROM {} WHERE start >= ?1 AND start < ?2 ORDER BY start",
                           names<SystemMetrics>(), traits(each).name);
    });
    return texts[static_cast<size_t>(table)];
}

const std::string& totalSystem(MetricsTable table) {
    static const auto texts = eachTable([](MetricsTable each) {
        return fmt::format("SELECT COUNT(*), {} FROM {} WHERE start >= ?1 AND start < ?2",
                           aggregates<SystemMetrics>(), traits(each).name);
    });
    return texts[static_cast<size_t>(table)];
}

const std::string& readApps() {
    static const auto text =
        fmt::format("SELECT app_id, {0} FROM app_1d WHERE start >= ?1 AND start < ?2 UNION ALL\n"
                    "SELECT app_id, {0} FROM app_1h WHERE start >= ?3 AND start < ?1 UNION ALL\n"
                    "SELECT app_id, {0} FROM app_1h WHERE start >= ?2 AND start < ?4",
                    names<AppMetrics>());
    return text;
}

const std::string& readApp(MetricsTable table) {
    static const auto texts = eachTable([](MetricsTable each) {
        return fmt::format(
            "SELECT start, {} FROM {} WHERE app_id = ?1 AND start >= ?2 AND start < ?3 ORDER BY start",
            names<AppMetrics>(), traits(each).name);
    });
    return texts[static_cast<size_t>(table)];
}

} // namespace metrics_sql

} // namespace quarn
