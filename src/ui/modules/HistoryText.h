#pragma once

#include "history/HistoryReads.h"
#include "ui/modules/Facts.h"
#include "ui/modules/WidgetKind.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the history says, in words.
namespace quarn {

/// "the last week".
std::string lastSpan(HistorySpan span);
/// What the totals of applications cover: "in the last week", and for an hour "since 14:00", because these
/// are kept by full hours.
std::string appSpan(const HistoryAnswer& answer);
/// What was kept of the choice `topAppsRange`; longer spans have no place in it.
HistorySpan spanOf(TopAppsRange range);
std::optional<TopAppsRange> rangeOf(HistorySpan span);

/// "12 % more than the week before", "3.1 times the week before", "as much as the week before". Empty when
/// there is nothing to say.
std::string comparison(double now, double before, HistorySpan span);
/// The same for a column: "+12 %", "−5 %", "× 3.1", "±0 %", "new".
std::string shortComparison(double now, double before);
/// Whether two spans of which so many seconds were observed can be compared at all.
bool areComparable(double observed, double observedBefore);

/// One total of the machine over a span.
struct HistoryTotal {
    WidgetKind kind = WidgetKind::cpu;
    std::string figure;     ///< "18.4 %"
    std::string meaning;    ///< "on average, 97.0 % at most"
    std::string comparison; ///< as above
};
/// CPU, memory, disk and network; power where it was known. Empty when nothing was observed.
std::vector<HistoryTotal> historyTotals(const HistoryAnswer& answer);

/// What applications are ranked by.
struct AppMetricTraits {
    std::string_view id;
    std::string_view title;  ///< "CPU"
    std::string_view amount; ///< what the figure is: "Time of one core"
    WidgetKind kind;         ///< its hue
};
inline constexpr std::array<AppMetricTraits, 5> appMetrics{{
    {"cpu", "CPU", "Time of one core", WidgetKind::cpu},
    {"memory", "Memory", "On average", WidgetKind::memory},
    {"disk", "Disk", "Read and written", WidgetKind::disk},
    {"energy", "Energy", "Energy score", WidgetKind::power},
    {"network", "Network", "Sent and received", WidgetKind::network},
}};
inline const AppMetricTraits& traits(AppHistoryMetric metric) {
    return appMetrics[static_cast<size_t>(metric)];
}

/// "1 h 12 min", "1.20 GiB", "3.40 GB".
std::string amountText(const AppMetrics& metrics, AppHistoryMetric metric);
/// "1 h 12 min of one core", "1.20 GiB on average".
std::string amountSentence(const AppMetrics& metrics, AppHistoryMetric metric);
/// The name for people of an application, from its key where none was recorded.
std::string_view appName(const AppTotal& app);

/// One row of the ranking.
struct AppRankRow {
    std::string app; ///< its key
    std::string name;
    std::string amount;
    std::string comparison; ///< with the span before; empty when nothing can be said
    double share = 0;       ///< of the greatest, 0 to 1
};
std::vector<AppRankRow> appRankRows(const HistoryAnswer& answer);

/// What an application did over a span.
std::vector<Fact> appFacts(const AppMetrics& metrics);

/// "6 d 4 h of the last week were recorded; Firefox used most CPU, 3 h 12 min of one core".
std::string historySentence(const HistoryAnswer& answer);

/// Why the history answers nothing, for people and without a full stop; empty when it answers.
std::string_view whyNoHistory(MetricsRead<HistoryAnswer>::State state);

} // namespace quarn
