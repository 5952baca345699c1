#pragma once

#include "history/Calendar.h"
#include "history/MetricsMarks.h"
#include "history/MetricsReads.h"

#include <vector>

namespace quarn {

/// A stretch of time and where its rows are read.
struct MetricsStretch {
    enum class Rows { minutes, minutesByHour, hours, days };
    Rows rows;
    int64_t from;
    int64_t to; ///< exclusive

    bool operator==(const MetricsStretch&) const = default;
};

/// Which tables answer for which part of a range, so that each period is counted once. A row belongs to a
/// range when it starts in it.
///
/// What is known of a database: every hour and every day before its mark is whole in the coarser table, and
/// the finer one holds everything since its retention at the last maintenance.
class MetricsTiers {
public:
    /// Reads the marks.
    MetricsTiers(SQLiteConnection& db, const Calendar& calendar);

    /// For a series: as fine as asked for where the rows are still kept, coarser before.
    std::vector<MetricsStretch> systemSeries(MetricsResolution resolution, int64_t from, int64_t to) const;
    std::vector<MetricsStretch> appSeries(MetricsResolution resolution, int64_t from, int64_t to) const;

    /// For a sum: as coarse as possible.
    std::vector<MetricsStretch> systemTotals(int64_t from, int64_t to) const;
    /// The part of a range that day rows answer for; empty at `from` when none does.
    struct Days {
        int64_t from;
        int64_t to;
    };
    Days wholeDays(MetricsTable table, int64_t from, int64_t to) const;

private:
    int64_t minutesKeptSince() const;
    int64_t firstHourOfSeries(MetricsTable hours, MetricsTable days, int64_t from) const;
    void addHours(std::vector<MetricsStretch>& plan, int64_t from, int64_t to) const;

    SQLiteConnection& db_;
    const Calendar& calendar_;
    MetricsMarks marks_;
};

} // namespace quarn
