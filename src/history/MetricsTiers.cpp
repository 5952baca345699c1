#include "history/MetricsTiers.h"

#include "history/HistoryTime.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

namespace quarn {

namespace {

using Rows = MetricsStretch::Rows;
constexpr int64_t always = std::numeric_limits<int64_t>::min();
/// Maintenance happens less than this after the end of the rolled days: a day of 25 hours and one more.
constexpr int64_t longestAfterRolledDays = 26 * hourSeconds;

void add(std::vector<MetricsStretch>& plan, Rows rows, int64_t from, int64_t to) {
    if (from < to) plan.push_back({rows, from, to});
}

} // namespace

MetricsTiers::MetricsTiers(SQLiteConnection& db, const Calendar& calendar)
    : db_(db), calendar_(calendar), marks_(readMarks(db)) {}

/// A full hour.
int64_t MetricsTiers::minutesKeptSince() const {
    if (!marks_.rolledHours) return always;
    return *marks_.rolledHours + hourSeconds - traits(MetricsTable::system_1m).retentionSeconds;
}

/// Where a series changes from days to hours: at the start of a day row from which on all hours are kept.
int64_t MetricsTiers::firstHourOfSeries(MetricsTable hours, MetricsTable days, int64_t from) const {
    if (!marks_.rolledDays) return from;
    const int64_t kept = *marks_.rolledDays + longestAfterRolledDays - traits(hours).retentionSeconds;
    if (from >= kept) return from;
    const auto row =
        db_.integer(fmt::format("SELECT MIN(start) FROM {} WHERE start >= ?", traits(days).name), {kept});
    return row ? std::min(*row, *marks_.rolledDays) : *marks_.rolledDays;
}

std::vector<MetricsStretch> MetricsTiers::systemSeries(MetricsResolution resolution, int64_t from,
                                                       int64_t to) const {
    if (resolution == MetricsResolution::day) return systemTotals(from, to);
    std::vector<MetricsStretch> plan;
    const int64_t hoursFrom =
        std::min(firstHourOfSeries(MetricsTable::system_1h, MetricsTable::system_1d, from), to);
    const int64_t rolled =
        std::clamp(marks_.rolledHours.value_or(hoursFrom), hoursFrom, std::max(to, hoursFrom));
    const bool fine = resolution == MetricsResolution::minute;
    const int64_t minutesFrom = fine ? std::clamp(minutesKeptSince(), hoursFrom, rolled) : rolled;
    add(plan, Rows::days, from, hoursFrom);
    add(plan, Rows::hours, hoursFrom, minutesFrom);
    add(plan, fine ? Rows::minutes : Rows::minutesByHour, minutesFrom, to);
    return plan;
}

std::vector<MetricsStretch> MetricsTiers::appSeries(MetricsResolution resolution, int64_t from,
                                                    int64_t to) const {
    std::vector<MetricsStretch> plan;
    if (resolution == MetricsResolution::day) {
        const auto days = wholeDays(MetricsTable::app_1d, from, to);
        add(plan, Rows::hours, from, days.from);
        add(plan, Rows::days, days.from, days.to);
        add(plan, Rows::hours, days.to, to);
        return plan;
    }
    const int64_t hoursFrom =
        std::min(firstHourOfSeries(MetricsTable::app_1h, MetricsTable::app_1d, from), to);
    add(plan, Rows::days, from, hoursFrom);
    add(plan, Rows::hours, hoursFrom, to);
    return plan;
}

std::vector<MetricsStretch> MetricsTiers::systemTotals(int64_t from, int64_t to) const {
    std::vector<MetricsStretch> plan;
    const auto days = wholeDays(MetricsTable::system_1d, from, to);
    if (days.from == days.to) {
        addHours(plan, from, to);
        return plan;
    }
    // A day that begins within an hour has that hour in the day before.
    addHours(plan, from, roundedUp(days.from, hourSeconds));
    add(plan, Rows::days, days.from, days.to);
    addHours(plan, roundedUp(days.to, hourSeconds), to);
    return plan;
}

/// Hours where they are whole and rolled, minutes at the edges.
void MetricsTiers::addHours(std::vector<MetricsStretch>& plan, int64_t from, int64_t to) const {
    const int64_t first = roundedUp(from, hourSeconds);
    const int64_t last = std::min(roundedDown(to, hourSeconds), marks_.rolledHours.value_or(always));
    if (first >= last) {
        add(plan, Rows::minutes, from, to);
        return;
    }
    add(plan, Rows::minutes, from, first);
    add(plan, Rows::hours, first, last);
    add(plan, Rows::minutes, last, to);
}

MetricsTiers::Days MetricsTiers::wholeDays(MetricsTable table, int64_t from, int64_t to) const {
    const Days none{from, from};
    if (!marks_.rolledDays || from >= *marks_.rolledDays) return none;
    // The rows themselves say where days begin: the zone may have been another when they were made.
    const auto edge = [&](std::string_view which, std::string_view condition, int64_t time) {
        return db_.integer(
            fmt::format("SELECT {}(start) FROM {} WHERE start {} ?", which, traits(table).name, condition),
            {time});
    };
    const auto first = edge("MIN", ">=", from);
    const int64_t end = std::min(to, *marks_.rolledDays);
    const auto last = edge("MAX", "<", end);
    if (!first || !last || *first > *last) return none;
    if (end == *marks_.rolledDays || calendar_.nextDay(*last) <= end) return {*first, end};
    return {*first, *last}; // the last day goes on past the end of the range
}

} // namespace quarn
