#include "desktop/widgets/TimeChart.h"

#include "desktop/Text.h"
#include "desktop/widgets/ChartOverlay.h"
#include "monitor/Throttled.h"
#include "ui/modules/ChartText.h"

#include <QDateTime>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

namespace {

/// The wall clock at a time of the steady one.
QString clockText(double steady) {
    const auto past = static_cast<qint64>((steadySeconds() - steady) * 1000);
    return QDateTime::currentDateTime().addMSecs(-past).toString("HH:mm:ss");
}

std::vector<Chart::Line> chartLines(const std::vector<TimeChart::Line>& lines) {
    std::vector<Chart::Line> result;
    result.reserve(lines.size());
    for (const auto& line : lines) result.push_back({line.label, line.kind, line.second});
    return result;
}

} // namespace

TimeChart::TimeChart(const LiveHistory& history, std::vector<Line> lines, Scale scale, QWidget* parent)
    : Chart(chartLines(lines), std::move(scale), parent), history_(history) {
    for (const auto& line : lines) series_.push_back(line.series);
}

void TimeChart::refresh(double spanSeconds) {
    if (spanSeconds != span_) top_.reset();
    span_ = spanSeconds;
    if (!paused_ && isVisible()) drawLatest();
}

void TimeChart::setPaused(bool paused) {
    if (paused == paused_) return;
    paused_ = paused;
    if (paused_)
        updateOverlay();
    else
        drawLatest();
}

void TimeChart::setScale(Scale scale) {
    changeScale(std::move(scale));
    top_.reset();
    drawLatest();
}

void TimeChart::drawLatest() {
    const auto times = history_.times();
    const double now = times.empty() ? 0 : times.back();
    auto first =
        static_cast<size_t>(std::lower_bound(times.begin(), times.end(), now - span_) - times.begin());
    if (first > 0) --first; // the line comes in from outside
    Data points;
    for (const double time : times.subspan(first)) points.periods.push_back({time, time});
    double largest = 0;
    QStringList latest;
    for (const LiveSeries each : series_) {
        const auto values = history_.values(each).subspan(first);
        for (const double value : values)
            if (value > largest) largest = value;
        latest.append(valueText(values.empty() ? std::nan("") : values.back()));
        points.values.emplace_back(values.begin(), values.end());
    }
    const double perUnit = scale().perUnit;
    const double top = scale().full > 0 ? scale().full : top_.follow(largest * perUnit, now) / perUnit;
    draw(std::move(points), now - span_, now, top, latest);
}

QString TimeChart::whenText(const Data::Period& period) const { return clockText(period.to); }

QString TimeChart::agoText(const Data::Period& period) const {
    return toQt(quarn::agoText(to() - period.to));
}

void TimeChart::describe(ChartOverlay& overlay, const std::function<double(double)>&) const {
    overlay.paused = paused_;
    overlay.from = paused_ ? clockText(from()) : toQt(quarn::agoText(span_));
    overlay.until = paused_ ? clockText(to()) : toQt(quarn::agoText(0));
}

void TimeChart::showEvent(QShowEvent*) {
    if (!paused_) drawLatest();
}

void TimeChart::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->pos())) setPaused(!paused_);
}

void TimeChart::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space)
        setPaused(!paused_);
    else
        Chart::keyPressEvent(event);
}

} // namespace quarn::desktop
