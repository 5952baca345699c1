#pragma once

#include "history/Calendar.h"
#include "history/HistoryTime.h"
#include "history/MetricsBatch.h"
#include "history/MetricsReads.h"
#include "history/MetricsSchema.h"
#include "history/MetricsTiers.h"
#include "history/SQLiteConnection.h"

#include <filesystem>

namespace quarn {

/// The long-term history: one SQLite database of minutes, hours and days of the machine and of hours and days
/// of each application.
///
/// What is recorded arrives in parts and is merged: sums add, peaks take the greater, names the newest. Every
/// total that is ever read equals the sum of what was written, whichever tables answer for it: what arrives
/// after its hour or day was rolled up is added to the roll-up as well.
///
/// Ranges are Unix seconds, the end exclusive; a row belongs to a range when it starts in it. Belongs to one
/// queue; every call may wait for the disk and throws SQLiteError. One program writes a database at a time
/// (see RecorderLock), any number of others read.
class MetricsStore {
public:
    using Column = MetricsColumn;
    using Merge = MetricsMerge;
    using Table = MetricsTable;
    using Access = SQLiteConnection::Access;

    /// For writing, creates the database with its folder when missing and brings an older one up to date; for
    /// reading, takes only one that is there and up to date. A database of a newer version of the program is
    /// refused and left as it is.
    explicit MetricsStore(const std::filesystem::path& file, Access access = Access::writing,
                          Calendar calendar = {});

    /// Merges a batch into the rows, all of it or nothing.
    void write(const MetricsBatch& batch);
    /// Rolls up what is complete and deletes what is past its retention, all of it or nothing.
    void maintain(WallTime now);
    /// The start of the newest minute; nullopt while there is none.
    std::optional<int64_t> newestRecord();
    /// When `vacuum` was run last; nullopt for never.
    std::optional<WallTime> lastVacuum();
    /// Gives the space of deleted rows back to the file system.
    void vacuum(WallTime now);
    /// Deletes the whole history.
    void clear();

    /// A series as fine as asked for where such rows are kept, coarser before. In order of time.
    std::vector<SystemPoint> systemPoints(MetricsResolution resolution, int64_t from, int64_t to);
    SystemMetrics systemTotals(int64_t from, int64_t to);
    RecentSystemTotals recentTotals(WallTime now);
    /// In order of `bundlePath`.
    std::vector<AppTotal> appTotals(int64_t from, int64_t to);
    /// One application by hours, or by local days.
    enum class AppSeriesStep { byHour, byDay };
    std::vector<AppPoint> appSeries(std::string_view appId, int64_t from, int64_t to, AppSeriesStep step);

private:
    void migrate();
    void put(Table table, int64_t start, const SystemMetrics& metrics);
    void put(Table table, int64_t start, std::string_view app, const AppMetrics& metrics);
    void addLate(const MetricsMarks& marks, int64_t hour, const SystemMetrics& metrics);

    Calendar calendar_;
    SQLiteConnection db_;
};

} // namespace quarn
