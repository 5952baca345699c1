#pragma once

#include "history/Calendar.h"
#include "history/MetricsSchema.h"
#include "history/SQLiteConnection.h"

namespace quarn {

/// Rolls minutes up into hours and hours into days up to the hour of `time` (Unix seconds), and deletes what
/// is past its retention. To be run in one transaction; throws SQLiteError.
///
/// The last period that was rolled is rolled once more, for rows that came late. Days are those of the
/// calendar; where the user has moved to another time zone in between, one of them is shorter or longer, so
/// that days never overlap.
void rollUpMetrics(SQLiteConnection& db, const Calendar& calendar, int64_t time);

/// The start of the day row that `time`, which lies before the end of the rolled days, belongs to.
int64_t dayRowOf(SQLiteConnection& db, const Calendar& calendar, MetricsTable table, int64_t time);

} // namespace quarn
