#pragma once

#include "history/MetricsReads.h"
#include "monitor/Snapshot.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarn {

class MetricsStore;

/// How far back a view of the history goes from now.
enum class HistorySpan { hour, day, week, month, year, twoYears };

struct HistorySpanTraits {
    std::string_view id;    ///< as commands take it
    std::string_view title; ///< for people
    int64_t seconds;
    MetricsResolution resolution; ///< of the machine's series
};
inline constexpr std::array<HistorySpanTraits, 6> historySpans{{
    {"hour", "Hour", 3600, MetricsResolution::minute},
    {"day", "Day", 86'400, MetricsResolution::minute},
    {"week", "Week", 604'800, MetricsResolution::hour},
    {"month", "Month", 2'592'000, MetricsResolution::hour},
    {"year", "Year", 31'536'000, MetricsResolution::day},
    {"two-years", "Two years", 63'072'000, MetricsResolution::day},
}};
inline const HistorySpanTraits& traits(HistorySpan span) { return historySpans[static_cast<size_t>(span)]; }

/// What a view of the history asks at one time.
struct HistoryQuestion {
    HistorySpan span = HistorySpan::day;
    AppHistoryMetric by = AppHistoryMetric::cpu; ///< ranks the applications
    size_t limit = 10;                           ///< of applications
    std::string app{};                           ///< whose own series is wanted; empty for none

    bool operator==(const HistoryQuestion&) const = default;
};

/// A total of one application beside that of the period before.
struct AppRank {
    AppTotal total;
    std::optional<AppMetrics> before; ///< absent when it was not recorded then
};

struct HistoryAnswer {
    HistoryQuestion question;
    int64_t from = 0; ///< of the machine's series and totals, Unix seconds
    int64_t to = 0;   ///< exclusive
    std::vector<SystemPoint> points;
    SystemMetrics total;
    SystemMetrics before; ///< of the equally long period that ends at `from`

    std::vector<AppRank> apps; ///< the greatest first
    AppMetrics otherApps;      ///< those beyond the limit together
    size_t otherAppCount = 0;
    int64_t appPeriod = 0; ///< seconds that the totals of applications cover: whole hours and the current one
    int64_t appPeriodBefore = 0; ///< and those before, whole hours

    std::vector<AppPoint> appPoints; ///< of `question.app`: hours, and local days for a month or more
    std::optional<AppTotal> app;     ///< its total
};

/// Answers from the tables that are finest for each stretch. Throws SQLiteError.
HistoryAnswer readHistory(MetricsStore& store, const HistoryQuestion& question, WallTime now);

} // namespace quarn
