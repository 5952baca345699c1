#include "history/MetricsRollup.h"

#include "history/HistoryTime.h"
#include "history/MetricsMarks.h"

#include <algorithm>

namespace quarn {

namespace {

constexpr int64_t dayAndNight = 86'400;

void run(SQLiteConnection& db, const std::string& sql, std::initializer_list<SQLiteBindable> values) {
    auto& statement = db.statement(sql);
    statement.bind(values);
    statement.run();
}

void rollHoursUntil(SQLiteConnection& db, int64_t hourEnd) {
    int64_t start = 0;
    if (const auto rolled = readMark(db, MetricsKey::rolledHours))
        start = *rolled - hourSeconds;
    else if (const auto first = db.integer("SELECT MIN(start) FROM system_1m"))
        start = roundedDown(*first, hourSeconds);
    else
        return;
    if (start >= hourEnd) return;
    run(db, metrics_sql::rollHours(), {start, hourEnd});
    writeMark(db, MetricsKey::rolledHours, hourEnd);
}

std::optional<int64_t> firstHour(SQLiteConnection& db) {
    const auto system = db.integer("SELECT MIN(start) FROM system_1h");
    const auto app = db.integer("SELECT MIN(start) FROM app_1h");
    if (!system || !app) return system ? system : app;
    return std::min(*system, *app);
}

std::optional<int64_t> lastDayBefore(SQLiteConnection& db, int64_t end) {
    return std::max(db.integer("SELECT MAX(start) FROM system_1d WHERE start < ?", {end}),
                    db.integer("SELECT MAX(start) FROM app_1d WHERE start < ?", {end}));
}

/// Where rolling days begins: with the last row once more where it is of the day before. Its own start is
/// asked for, as the time zone may have been another when it was made.
std::optional<int64_t> firstDayToRoll(SQLiteConnection& db, const Calendar& calendar,
                                      std::optional<int64_t> rolled) {
    if (!rolled) {
        const auto first = firstHour(db);
        return first ? std::optional(calendar.startOfDay(*first)) : std::nullopt;
    }
    const auto last = lastDayBefore(db, *rolled);
    return last && *last >= calendar.previousDay(*rolled) ? last : rolled;
}

void rollDaysUntil(SQLiteConnection& db, const Calendar& calendar, int64_t dayEnd) {
    const auto rolled = readMark(db, MetricsKey::rolledDays);
    if (rolled && *rolled > dayEnd) return; // the clock was set back, or the user went west
    auto start = firstDayToRoll(db, calendar, rolled);
    if (!start) return;
    const int64_t longest = traits(MetricsTable::system_1d).retentionSeconds + dayAndNight;
    start = std::max(*start, calendar.startOfDay(dayEnd - longest));
    if (*start >= dayEnd) return;
    while (*start < dayEnd) {
        const int64_t next = calendar.nextDay(*start);
        run(db, metrics_sql::rollSystemDay(), {*start, next});
        run(db, metrics_sql::rollAppDay(), {*start, next});
        start = next;
    }
    writeMark(db, MetricsKey::rolledDays, dayEnd);
}

} // namespace

void rollUpMetrics(SQLiteConnection& db, const Calendar& calendar, int64_t time) {
    const int64_t hourEnd = roundedDown(time, hourSeconds);
    rollHoursUntil(db, hourEnd);
    rollDaysUntil(db, calendar, calendar.startOfDay(hourEnd));
    for (size_t i = 0; i < metricsTables.size(); ++i)
        run(db, metrics_sql::deleteOlder(static_cast<MetricsTable>(i)),
            {time - metricsTables[i].retentionSeconds});
}

int64_t dayRowOf(SQLiteConnection& db, const Calendar& calendar, MetricsTable table, int64_t time) {
    const int64_t day = calendar.startOfDay(time);
    const auto row =
        db.integer(table == MetricsTable::app_1d ? "SELECT MAX(start) FROM app_1d WHERE start <= ?"
                                                 : "SELECT MAX(start) FROM system_1d WHERE start <= ?",
                   {time});
    return row ? std::max(*row, day) : day;
}

} // namespace quarn
