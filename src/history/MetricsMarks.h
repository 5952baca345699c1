#pragma once

#include "history/MetricsSchema.h"
#include "history/SQLiteConnection.h"

#include <optional>

namespace quarn {

/// How far the history has been rolled up; nullopt before the first time.
struct MetricsMarks {
    std::optional<int64_t> rolledHours; ///< every hour before this is whole in `system_1h`
    std::optional<int64_t> rolledDays;  ///< every day before this is whole in `system_1d` and `app_1d`

    bool coverHour(int64_t hour) const { return rolledHours && hour < *rolledHours; }
    bool coverDay(int64_t time) const { return rolledDays && time < *rolledDays; }
};

MetricsMarks readMarks(SQLiteConnection& db);
std::optional<int64_t> readMark(SQLiteConnection& db, MetricsKey key);
void writeMark(SQLiteConnection& db, MetricsKey key, int64_t time);

} // namespace quarn
