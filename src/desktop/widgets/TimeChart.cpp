#include "desktop/widgets/TimeChart.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/ChartOverlay.h"
#include "desktop/widgets/Legend.h"
#include "desktop/widgets/TextValue.h"
#include "monitor/Throttled.h"
#include "ui/modules/ChartText.h"
#include "ui/modules/SteadyTop.h"

#include <QDateTime>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

// The library's header is written with the keywords that are switched off here.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef foreach

namespace quarn::desktop {

namespace {

constexpr double fillOpacity = 0.18;
constexpr int gridLines = 4;
constexpr int labelledHeight = 110; ///< from here on each grid line has its mark, below every second one

/// The wall clock at a time of the steady one.
QString clockText(double steady) {
    const auto past = static_cast<qint64>((steadySeconds() - steady) * 1000);
    return QDateTime::currentDateTime().addMSecs(-past).toString("HH:mm:ss");
}

/// A graph whose fill is painted pixel by pixel: filling a polygon of a thousand corners takes many times as
/// long, and under its line it looks the same.
class ShadedGraph final : public QCPGraph {
public:
    using QCPGraph::QCPGraph;

protected:
    void drawFill(QCPPainter* painter, QVector<QPointF>* lines) const override {
        const QRect area = clipRect();
        const double ratio = painter->device()->devicePixelRatioF();
        const QSize size = (QSizeF(area.size()) * ratio).toSize();
        if (size.isEmpty()) return;
        if (shade_.size() != size) shade_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
        shade_.setDevicePixelRatio(ratio);
        findTops(*lines, area.topLeft(), ratio);
        const QRgb color = qPremultiply(mBrush.color().rgba());
        const int base = static_cast<int>(std::lround((mValueAxis->coordToPixel(0) - area.top()) * ratio));
        for (int y = 0; y < size.height(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(shade_.scanLine(y));
            const QRgb below = y < base ? color : 0;
            for (int x = 0; x < size.width(); ++x) row[x] = tops_[static_cast<size_t>(x)] <= y ? below : 0;
        }
        painter->drawImage(area.topLeft(), shade_);
    }

private:
    /// The row in which the line runs, for each column of the image; below it where there is no line.
    void findTops(const QVector<QPointF>& line, QPointF origin, double ratio) const {
        tops_.assign(static_cast<size_t>(shade_.width()), shade_.height());
        for (qsizetype i = 1; i < line.size(); ++i) {
            const QPointF a = (line[i - 1] - origin) * ratio, b = (line[i] - origin) * ratio;
            if (!std::isfinite(a.y()) || !std::isfinite(b.y()) || b.x() <= a.x()) continue;
            const double slope = (b.y() - a.y()) / (b.x() - a.x());
            const double end = std::min(b.x(), static_cast<double>(shade_.width()));
            for (int x = static_cast<int>(std::ceil(std::max(a.x(), 0.0) - 0.5)); x + 0.5 < end; ++x)
                tops_[static_cast<size_t>(x)] =
                    std::max(0, static_cast<int>(std::lround(a.y() + (x + 0.5 - a.x()) * slope)));
        }
    }

    mutable QImage shade_; ///< kept from one frame to the next, as the next
    mutable std::vector<int> tops_;
};

} // namespace

struct TimeChart::Plot {
    QCustomPlot* widget = nullptr;
    ChartOverlay* overlay = nullptr;
    QSharedPointer<QCPAxisTickerFixed> ticker{new QCPAxisTickerFixed};
    SteadyTop top;
    double now = 0; ///< the right end, steady seconds

    QCPAxis& time() const { return *widget->xAxis; }
    QCPAxis& value() const { return *widget->yAxis; }
    const QCPGraphDataContainer& points(int line) const { return *widget->graph(line)->data(); }
    /// The place of the point nearest to `time`; nullopt without points.
    std::optional<int> nearest(double time) const;
    /// Shows `series` between `from` and `now`; the largest value in it.
    double show(int line, std::span<const double> times, std::span<const double> series, double from) const;
};

std::optional<int> TimeChart::Plot::nearest(double at) const {
    const auto& all = points(0);
    if (all.isEmpty()) return {};
    const auto after = all.findBegin(at, false);
    if (after == all.constEnd()) return all.size() - 1;
    if (after == all.constBegin()) return 0;
    const auto before = after - 1;
    const auto found = at - before->key < after->key - at ? before : after;
    return static_cast<int>(found - all.constBegin());
}

double TimeChart::Plot::show(int line, std::span<const double> times, std::span<const double> series,
                             double from) const {
    auto first = static_cast<size_t>(std::lower_bound(times.begin(), times.end(), from) - times.begin());
    if (first > 0) --first; // the line comes in from outside
    QVector<QCPGraphData> data;
    data.reserve(static_cast<qsizetype>(times.size() - first));
    double largest = 0;
    for (size_t i = first; i < times.size(); ++i) {
        data.append({times[i], series[i]});
        if (series[i] > largest) largest = series[i];
    }
    widget->graph(line)->data()->set(data, true);
    return largest;
}

TimeChart::TimeChart(const LiveHistory& history, std::vector<Line> lines, Scale scale, QWidget* parent)
    : QWidget(parent),
      history_(history),
      lines_(std::move(lines)),
      scale_(std::move(scale)),
      plot_(std::make_unique<Plot>()) {
    setTextValue(this, {});
    QStringList names;
    for (const auto& line : lines_) names.append(line.label);
    setAccessibleName(say("%1 over time").arg(names.join(", ")));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    if (lines_.size() > 1) column->addWidget(legend_ = new Legend);
    plot_->widget = new QCustomPlot;
    auto& plot = *plot_->widget;
    plot.setAttribute(Qt::WA_TransparentForMouseEvents);
    plot.setMinimumSize(0, 0);
    plot.layer("overlay")->setMode(QCPLayer::lmLogical); // one buffer is enough: ours is a widget of its own
    plot.axisRect()->setAutoMargins(QCP::msNone);
    plot_->time().setVisible(false);
    plot_->value().setTicker(plot_->ticker);
    plot_->value().setTickLabels(false);
    plot_->value().setTicks(true);
    plot_->value().setTickLength(0);
    plot_->ticker->setScaleStrategy(QCPAxisTickerFixed::ssNone);
    for (size_t i = 0; i < lines_.size(); ++i) new ShadedGraph(plot.xAxis, plot.yAxis); // owned by the plot
    column->addWidget(&plot, 1);
    plot_->overlay = new ChartOverlay(&plot);
    applyTheme();
    connect(&Theme::current(), &Theme::changed, this, [this] { applyTheme(); });
}

TimeChart::~TimeChart() = default;

QSize TimeChart::sizeHint() const { return {400, 180}; }
QSize TimeChart::minimumSizeHint() const { return {160, 100}; }

void TimeChart::applyTheme() {
    const auto& theme = Theme::current();
    auto& plot = *plot_->widget;
    plot.setBackground(theme.surface());
    const QPen faint(theme.line(), 1);
    plot_->value().grid()->setPen(faint);
    plot_->value().grid()->setZeroLinePen(faint);
    plot_->value().setBasePen(Qt::NoPen);
    plot_->value().setTickPen(Qt::NoPen);
    plot_->value().setSubTickPen(Qt::NoPen);
    for (size_t i = 0; i < lines_.size(); ++i) {
        QColor color = theme.kind(lines_[i].kind, lines_[i].second);
        auto& graph = *plot.graph(static_cast<int>(i));
        graph.setPen(QPen(color, 1));
        color.setAlphaF(fillOpacity);
        graph.setBrush(color);
    }
    layOut();
}

void TimeChart::refresh(double spanSeconds) {
    if (spanSeconds != span_) plot_->top.reset();
    span_ = spanSeconds;
    if (!paused_ && isVisible()) draw();
}

void TimeChart::setPaused(bool paused) {
    if (paused == paused_) return;
    paused_ = paused;
    if (paused_)
        updateOverlay();
    else
        draw();
}

void TimeChart::setScale(Scale scale) {
    scale_ = std::move(scale);
    plot_->top.reset();
    draw();
}

void TimeChart::draw() {
    const auto times = history_.times();
    plot_->now = times.empty() ? 0 : times.back();
    const double from = plot_->now - span_;
    double largest = 0;
    QStringList latest;
    std::vector<Legend::Entry> entries;
    for (size_t i = 0; i < lines_.size(); ++i) {
        const auto& line = lines_[i];
        const auto series = history_.values(line.series);
        largest = std::max(largest, plot_->show(static_cast<int>(i), times, series, from));
        const QString value = valueText(series.empty() ? std::nan("") : series.back());
        latest.append(lines_.size() == 1 ? value : line.label + ' ' + value);
        entries.push_back(
            {line.kind, line.second ? Theme::current().secondStrength() : 1, line.label, value});
    }
    if (legend_) legend_->show(entries);
    setTextValue(this, latest.join(", "));
    const double top = scale_.full > 0
                           ? scale_.full
                           : plot_->top.follow(largest * scale_.perUnit, plot_->now) / scale_.perUnit;
    plot_->ticker->setTickStep(top / gridLines);
    plot_->value().setRange(0, top);
    plot_->time().setRange(from, plot_->now);
    layOut();
}

void TimeChart::layOut() {
    auto& overlay = *plot_->overlay;
    auto& plot = *plot_->widget;
    const QFontMetrics metrics(Theme::captionFont());
    const double top = plot_->value().range().upper;
    const int every = plot.height() < labelledHeight ? 2 : 1;
    overlay.marks.clear();
    int widest = 0;
    for (int i = 0; scale_.text && i <= gridLines; i += every) {
        const QString text = toQt(scaleMark(scale_.text(top * i / gridLines).toStdString()));
        overlay.marks.push_back({top * i / gridLines, text});
        widest = std::max(widest, metrics.horizontalAdvance(text));
    }
    const int half = metrics.height() / 2 + 1;
    const QMargins margins(1, half, widest + Theme::gap, metrics.height() + half);
    plot.axisRect()->setMargins(margins);
    overlay.setGeometry(plot.rect());
    overlay.area = plot.rect().marginsRemoved(margins);
    plot.replot(QCustomPlot::rpQueuedRefresh);
    for (auto& mark : overlay.marks) mark.y = plot_->value().coordToPixel(mark.y);
    updateOverlay();
}

void TimeChart::updateOverlay() {
    auto& overlay = *plot_->overlay;
    overlay.paused = paused_;
    overlay.from = paused_ ? clockText(plot_->now - span_) : toQt(agoText(span_));
    overlay.until = paused_ ? clockText(plot_->now) : toQt(agoText(0));
    overlay.hair.reset();
    if (const auto at = hairAge_ ? plot_->nearest(plot_->now - *hairAge_) : std::nullopt) {
        const double time = plot_->points(0).at(*at)->key;
        ChartOverlay::Hair hair{
            plot_->time().coordToPixel(time), clockText(time), toQt(agoText(plot_->now - time)), {}};
        for (size_t i = 0; i < lines_.size(); ++i) {
            const double value = plot_->points(static_cast<int>(i)).at(*at)->value;
            hair.rows.push_back({Theme::current().kind(lines_[i].kind, lines_[i].second),
                                 lines_[i].label,
                                 valueText(value),
                                 {}});
            if (std::isfinite(value)) hair.rows.back().y = plot_->value().coordToPixel(value);
        }
        if (time >= plot_->now - span_) overlay.hair = std::move(hair);
    }
    overlay.update();
}

QString TimeChart::valueText(double value) const {
    return std::isfinite(value) && scale_.text ? scale_.text(value) : QString("—");
}

void TimeChart::showEvent(QShowEvent*) {
    if (!paused_) draw();
}

void TimeChart::resizeEvent(QResizeEvent*) {
    layout()->activate();
    layOut();
}

void TimeChart::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = plot_->widget->mapFrom(this, event->pos());
    hairAge_.reset();
    if (plot_->overlay->area.contains(at)) hairAge_ = plot_->now - plot_->time().pixelToCoord(at.x());
    updateOverlay();
}

void TimeChart::leaveEvent(QEvent*) {
    hairAge_.reset();
    updateOverlay();
}

void TimeChart::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->pos())) setPaused(!paused_);
}

void TimeChart::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space: setPaused(!paused_); break;
    case Qt::Key_Left: moveHair(-1); break;
    case Qt::Key_Right: moveHair(1); break;
    case Qt::Key_Escape:
        if (!hairAge_) return QWidget::keyPressEvent(event);
        hairAge_.reset();
        updateOverlay();
        break;
    default: QWidget::keyPressEvent(event);
    }
}

void TimeChart::moveHair(int points) {
    const auto at = plot_->nearest(plot_->now - hairAge_.value_or(0));
    if (!at) return;
    const int next = std::clamp(*at + (hairAge_ ? points : 0), 0, plot_->points(0).size() - 1);
    hairAge_ = std::min(plot_->now - plot_->points(0).at(next)->key, span_);
    updateOverlay();
}

void TimeChart::focusInEvent(QFocusEvent* event) {
    // A click needs no frame to tell where the keys go.
    plot_->overlay->focused =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    plot_->overlay->update();
}

void TimeChart::focusOutEvent(QFocusEvent*) {
    plot_->overlay->focused = false;
    plot_->overlay->update();
}

} // namespace quarn::desktop
