// What a MetricsStore answers.
#include "history/MetricsRows.h"
#include "history/MetricsStore.h"

#include <algorithm>
#include <map>

namespace quarn {

namespace {

using Rows = MetricsStretch::Rows;

MetricsTable systemTableOf(Rows rows) {
    return rows == Rows::minutes ? MetricsTable::system_1m
           : rows == Rows::days  ? MetricsTable::system_1d
                                 : MetricsTable::system_1h;
}

const std::string& pointsOf(Rows rows) {
    return rows == Rows::minutesByHour ? metrics_sql::readMinutesByHour()
                                       : metrics_sql::readSystem(systemTableOf(rows));
}

/// Brings points into order, and merges those that begin together.
template <class Point>
void mergeEqualStarts(std::vector<Point>& points) {
    std::stable_sort(points.begin(), points.end(),
                     [](const Point& a, const Point& b) { return a.start < b.start; });
    std::vector<Point> merged;
    merged.reserve(points.size());
    for (auto& point : points) {
        if (!merged.empty() && merged.back().start == point.start)
            mergeInto(merged.back().metrics, point.metrics);
        else
            merged.push_back(std::move(point));
    }
    points = std::move(merged);
}

/// Gives each point the start of its local day. Points are in order.
template <class Point>
void mergedIntoDays(std::vector<Point>& points, const Calendar& calendar) {
    int64_t day = 0, next = 0; // of the points looked at last
    for (auto& point : points) {
        if (point.start >= next) {
            day = calendar.startOfDay(point.start);
            next = calendar.nextDay(point.start);
        }
        point.start = day;
    }
    mergeEqualStarts(points);
}

} // namespace

std::vector<SystemPoint> MetricsStore::systemPoints(MetricsResolution resolution, int64_t from, int64_t to) {
    std::vector<SystemPoint> points;
    db_.snapshot([&] {
        for (const auto& stretch : MetricsTiers(db_, calendar_).systemSeries(resolution, from, to)) {
            auto& rows = db_.statement(pointsOf(stretch.rows));
            rows.bind({stretch.from, stretch.to});
            while (rows.step()) points.push_back({rows.integer(0), readMetrics<SystemMetrics>(rows, 1)});
        }
    });
    mergeEqualStarts(points);
    if (resolution == MetricsResolution::day) mergedIntoDays(points, calendar_);
    return points;
}

SystemMetrics MetricsStore::systemTotals(int64_t from, int64_t to) {
    SystemMetrics total;
    db_.snapshot([&] {
        for (const auto& stretch : MetricsTiers(db_, calendar_).systemTotals(from, to)) {
            auto& row = db_.statement(metrics_sql::totalSystem(systemTableOf(stretch.rows)));
            row.bind({stretch.from, stretch.to});
            while (row.step()) mergeInto(total, readMetrics<SystemMetrics>(row, 1));
        }
    });
    return total;
}

RecentSystemTotals MetricsStore::recentTotals(WallTime now) {
    const int64_t time = unixSeconds(now), end = time + 1;
    const auto last = [&](TopAppsRange range) {
        return systemTotals(roundedDown(time - spanSeconds(range), hourSeconds), end);
    };
    return {systemTotals(calendar_.startOfDay(time), end), last(TopAppsRange::week),
            last(TopAppsRange::month)};
}

std::vector<AppTotal> MetricsStore::appTotals(int64_t from, int64_t to) {
    std::map<std::string, AppMetrics, std::less<>> sums;
    db_.snapshot([&] {
        const auto days = MetricsTiers(db_, calendar_).wholeDays(MetricsTable::app_1d, from, to);
        auto& rows = db_.statement(metrics_sql::readApps());
        rows.bind({days.from, days.to, from, to});
        // Grouping here takes a third of what it takes SQLite, which sorts all rows: each period's rows are
        // in order already, so that the next one mostly belongs to the next sum.
        auto next = sums.end();
        while (rows.step()) {
            const auto app = rows.text(0);
            if (next == sums.end() || next->first != app) next = sums.lower_bound(app);
            if (next == sums.end() || next->first != app) next = sums.emplace_hint(next, app, AppMetrics());
            mergeRow(next->second, rows, 1);
            ++next;
        }
    });
    std::vector<AppTotal> totals;
    totals.reserve(sums.size());
    for (auto& [app, metrics] : sums) totals.push_back({app, std::move(metrics)});
    return totals;
}

std::vector<AppPoint> MetricsStore::appSeries(std::string_view appId, int64_t from, int64_t to,
                                              AppSeriesStep step) {
    const bool byDay = step == AppSeriesStep::byDay;
    std::vector<AppPoint> points;
    db_.snapshot([&] {
        const auto plan = MetricsTiers(db_, calendar_)
                              .appSeries(byDay ? MetricsResolution::day : MetricsResolution::hour, from, to);
        for (const auto& stretch : plan) {
            const auto table = stretch.rows == Rows::days ? MetricsTable::app_1d : MetricsTable::app_1h;
            auto& rows = db_.statement(metrics_sql::readApp(table));
            rows.bind({appId, stretch.from, stretch.to});
            while (rows.step()) points.push_back({rows.integer(0), readMetrics<AppMetrics>(rows, 1)});
        }
    });
    mergeEqualStarts(points);
    if (byDay) mergedIntoDays(points, calendar_);
    return points;
}

} // namespace quarn
