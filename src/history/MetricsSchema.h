#pragma once

#include "history/MetricsColumns.h"

#include <array>
#include <cstdint>
#include <string>

namespace quarn {

enum class MetricsTable { system_1m, system_1h, system_1d, app_1h, app_1d };

struct MetricsTableTraits {
    std::string_view name;
    int64_t retentionSeconds; ///< rows that began longer ago are deleted
};

inline constexpr std::array<MetricsTableTraits, 5> metricsTables{{
    {"system_1m", 604'800},
    {"system_1h", 7'776'000},
    {"system_1d", 63'072'000},
    {"app_1h", 2'678'400},
    {"app_1d", 31'536'000},
}};

inline const MetricsTableTraits& traits(MetricsTable table) {
    return metricsTables[static_cast<size_t>(table)];
}

/// Numbers that the database keeps beside its rows, Unix seconds.
enum class MetricsKey {
    rolledHours, ///< exclusive end of the hours that were rolled up
    rolledDays,  ///< exclusive end of the days that were rolled up
    vacuumedAt
};
inline constexpr std::array<std::string_view, 3> metricsKeyTexts{"rolled_hours", "rolled_days",
                                                                 "vacuumed_at"};

/// What brings a database from one schema version to the next: the script at index i leads from version i to
/// version i + 1.
inline constexpr size_t metricsSchemaVersion = 4;
const std::array<std::string, metricsSchemaVersion>& metricsMigrations();

/// The SQL of the store, each text built once.
namespace metrics_sql {

extern const char* const connectionSettings;

/// Inserts one row, or merges it into the row that is there: the parameters are the key columns, then the
/// value columns.
const std::string& upsert(MetricsTable table);
/// "DELETE FROM … WHERE start < ?"
const std::string& deleteOlder(MetricsTable table);

/// Rolls the minutes of [?1, ?2), two full hours, up into hours.
const std::string& rollHours();
/// The same hours as rows to read, in order.
const std::string& readMinutesByHour();
/// Rolls the hours of [?1, ?2) up into the day that starts at ?1.
const std::string& rollSystemDay();
const std::string& rollAppDay();

/// `start` and the value columns of the rows that began in [?1, ?2), in order.
const std::string& readSystem(MetricsTable table);
/// The columns of all rows that began in [?1, ?2) merged into one row.
const std::string& totalSystem(MetricsTable table);
/// `app_id` and the value columns of every application: days that began in [?1, ?2), hours that began in
/// [?3, ?1) and in [?2, ?4). Within each period in order of `app_id`.
const std::string& readApps();
/// `start` and the value columns of application ?1 in [?2, ?3), in order.
const std::string& readApp(MetricsTable table);

} // namespace metrics_sql

} // namespace quarn
