#pragma once

#include "history/AppMetrics.h"
#include "history/SystemMetrics.h"
#include "ui/settings/PrefTypes.h"

#include <optional>
#include <vector>

namespace quarn {

/// One period of the machine's history; how much of it was observed is in `metrics.seconds`.
struct SystemPoint {
    int64_t start = 0; ///< Unix seconds
    SystemMetrics metrics;
};

/// One period of an application's history.
struct AppPoint {
    int64_t start = 0;
    AppMetrics metrics;
};

/// The length of a series' points, where the history is still that fine; further back they are longer.
enum class MetricsResolution { minute, hour, day };

struct SystemSeriesRead {
    std::vector<SystemPoint> points; ///< in order; periods without a record are missing
    int64_t from = 0;                ///< the range that was asked for, Unix seconds
    int64_t to = 0;                  ///< exclusive
};

/// What one application did over a range.
struct AppTotal {
    std::string bundlePath; ///< its identity, the path of a bundle or another key
    AppMetrics metrics;
};

struct TopAppsRead {
    std::vector<AppTotal> apps; ///< the greatest first
    int64_t period = 0;         ///< seconds that the range covers
};

struct RecentSystemTotals {
    SystemMetrics today; ///< since the local midnight
    SystemMetrics lastWeek;
    SystemMetrics lastMonth; ///< 30 days
};

/// By what applications are ranked: CPU time, mean memory, bytes read and written, energy impact, bytes
/// received and sent.
enum class AppHistoryMetric { cpu, memory, disk, energy, network };

/// An answer of the history.
template <class T>
struct MetricsRead {
    enum class State {
        values,
        off,   ///< the history is not being recorded
        failed ///< the database could not be opened or read; the log says why
    };
    State state = State::failed;
    std::optional<T> values; ///< there when `state` is `values`
};

/// 3,600, 86,400, 604,800 and 2,592,000 seconds.
int64_t spanSeconds(TopAppsRange range);

/// By what an application is ranked: seconds, bytes or a score.
double rankOf(const AppMetrics& app, AppHistoryMetric metric);
/// The greatest `limit` by `metric`; those that are equal keep their order.
void rankApps(std::vector<AppTotal>& apps, AppHistoryMetric metric, size_t limit);

} // namespace quarn
