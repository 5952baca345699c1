#include "desktop/widgets/HistoryChart.h"

#include "desktop/Text.h"
#include "desktop/widgets/ChartOverlay.h"
#include "ui/modules/CalendarText.h"
#include "ui/modules/Scale.h"

#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int tickWidth = 60; ///< pixels that a mark of the time axis needs

} // namespace

HistoryChart::HistoryChart(std::vector<Line> lines, Scale scale, QWidget* parent)
    : Chart(std::move(lines), std::move(scale), parent) {}

void HistoryChart::show(const HistorySeries& series, int64_t from, int64_t to) {
    Data points;
    for (const auto& period : series.periods)
        points.periods.push_back({static_cast<double>(period.from), static_cast<double>(period.to)});
    points.values = series.lines;
    double largest = 0;
    for (const auto& line : series.lines)
        for (const double value : line)
            if (value > largest) largest = value;
    const double perUnit = scale().perUnit;
    const double top = scale().full > 0 ? scale().full : niceTop(largest * perUnit) / perUnit;
    draw(std::move(points), static_cast<double>(from), static_cast<double>(to), top, {});
}

QString HistoryChart::whenText(const Data::Period& period) const {
    return toQt(periodText(static_cast<int64_t>(period.from), static_cast<int64_t>(period.to)));
}

QString HistoryChart::agoText(const Data::Period&) const { return {}; }

void HistoryChart::describe(ChartOverlay& overlay, const std::function<double(double)>& xOf) const {
    const auto room = static_cast<size_t>(std::max(1, overlay.area.width() / tickWidth));
    overlay.ticks.clear();
    for (const auto& tick : calendarTicks(static_cast<int64_t>(from()), static_cast<int64_t>(to()), room))
        overlay.ticks.push_back({xOf(static_cast<double>(tick.time)), toQt(tick.text)});
}

} // namespace quarn::desktop
