#pragma once

#include "cli/JsonWriter.h"
#include "cli/TerminalText.h"
#include "history/HistoryReads.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the history answers, for people and for scripts. Texts end with a line feed.
namespace quarn::cli {

/// How text is laid out.
struct HistoryLayout {
    int columns = 80; ///< of the terminal
    Charset charset = Charset::utf8;
};

/// The machine's series: a small plot of each kind, or only of one.
std::string seriesText(const HistoryAnswer& answer, std::optional<AppHistoryMetric> by, HistoryLayout layout);
void writeSeries(JsonWriter& json, const HistoryAnswer& answer);

/// The applications that used most.
std::string topText(const HistoryAnswer& answer, HistoryLayout layout);
void writeTop(JsonWriter& json, const HistoryAnswer& answer);

/// Those of `all` that go by `name` (in any letter case) or have that key; if there are none, those whose
/// name contains it. In the order of their CPU time.
std::vector<AppTotal> appsNamed(std::vector<AppTotal> all, std::string_view name);
/// The application that was asked for.
std::string appText(const HistoryAnswer& answer, HistoryLayout layout);
void writeApp(JsonWriter& json, const HistoryAnswer& answer);

/// The machine's totals of one span beside the span before, and of today, the week and the month.
std::string totalsText(const HistoryAnswer& answer, HistoryLayout layout);
void writeTotals(JsonWriter& json, const HistoryAnswer& answer);
std::string totalsText(const RecentSystemTotals& totals, HistoryLayout layout);
void writeTotals(JsonWriter& json, const RecentSystemTotals& totals);

} // namespace quarn::cli
