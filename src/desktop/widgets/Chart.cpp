#include "desktop/widgets/Chart.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/ChartOverlay.h"
#include "desktop/widgets/Legend.h"
#include "desktop/widgets/TextValue.h"
#include "ui/modules/ChartText.h"
#include "ui/modules/Scale.h"

#include <QMouseEvent>
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
constexpr int stepsOfFullScale = 4;
constexpr int labelledHeight =
    110; ///< from here on each grid line has its mark, below only the ends and a middle one

/// A graph whose fill is painted pixel by pixel: filling a polygon of a thousand corners takes many times as
/// long, and under its line it looks the same.
class ShadedGraph final : public QCPGraph {
public:
    using QCPGraph::QCPGraph;

protected:
    void drawFill(QCPPainter* painter, QVector<QPointF>* lines) const override {
        if (mBrush.style() == Qt::NoBrush) return;
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

struct Chart::Plot {
    QCustomPlot* widget = nullptr;
    ChartOverlay* overlay = nullptr;
    QSharedPointer<QCPAxisTickerFixed> ticker{new QCPAxisTickerFixed};

    QCPAxis& time() const { return *widget->xAxis; }
    QCPAxis& value() const { return *widget->yAxis; }
    void show(int line, const std::vector<Data::Period>& periods, const std::vector<double>& values) const;
};

/// A period is drawn as a level line, with a hole where the next one does not follow.
void Chart::Plot::show(int line, const std::vector<Data::Period>& periods,
                       const std::vector<double>& values) const {
    QVector<QCPGraphData> points;
    points.reserve(2 * static_cast<qsizetype>(periods.size()));
    for (size_t i = 0; i < periods.size(); ++i) {
        const auto& [from, to] = periods[i];
        points.append({from, values[i]});
        if (to <= from) continue;
        points.append({to, values[i]});
        if (i + 1 < periods.size() && periods[i + 1].from > to) points.append({to, std::nan("")});
    }
    widget->graph(line)->data()->set(points, true);
}

Chart::Chart(std::vector<Line> lines, Scale scale, QWidget* parent)
    : QWidget(parent), lines_(std::move(lines)), scale_(std::move(scale)), plot_(std::make_unique<Plot>()) {
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
    shown_.values.resize(lines_.size());
    applyColours();
    connect(&Theme::current(), &Theme::changed, this, [this] {
        applyColours();
        layOut();
    });
}

Chart::~Chart() = default;

QSize Chart::sizeHint() const { return {400, 180}; }
QSize Chart::minimumSizeHint() const { return {160, 100}; }

void Chart::applyColours() {
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
        graph.setBrush(lines_[i].fill == Line::Fill::below ? QBrush(color) : QBrush());
    }
}

void Chart::draw(Data points, double from, double to, double top, const QStringList& values) {
    shown_ = std::move(points);
    from_ = from;
    to_ = to;
    std::vector<Legend::Entry> entries;
    QStringList spoken;
    for (size_t i = 0; i < lines_.size(); ++i) {
        const auto& line = lines_[i];
        plot_->show(static_cast<int>(i), shown_.periods, shown_.values[i]);
        const QString value = values.value(static_cast<qsizetype>(i));
        entries.push_back(
            {line.kind, line.second ? Theme::current().secondStrength() : 1, line.label, value});
        spoken.append(lines_.size() == 1 ? value : line.label + ' ' + value);
    }
    if (legend_) legend_->show(entries);
    setTextValue(this, spoken.join(", "));
    plot_->ticker->setTickStep(top / steps(top));
    plot_->value().setRange(0, top);
    plot_->time().setRange(from, to);
    layOut();
}

/// Into how many the grid divides the scale.
int Chart::steps(double top) const {
    return scale_.full > 0 ? stepsOfFullScale : scaleSteps(top * scale_.perUnit);
}

void Chart::layOut() {
    auto& overlay = *plot_->overlay;
    auto& plot = *plot_->widget;
    const QFontMetrics metrics(Theme::captionFont());
    const double top = plot_->value().range().upper;
    const int all = steps(top);
    const int every = plot.height() >= labelledHeight ? 1 : all % 2 == 0 ? all / 2 : all;
    overlay.marks.clear();
    int widest = 0;
    for (int i = 0; scale_.text && i <= all; i += every) {
        const QString text = toQt(scaleMark(scale_.text(top * i / all).toStdString()));
        overlay.marks.push_back({top * i / all, text});
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

void Chart::updateOverlay() {
    auto& overlay = *plot_->overlay;
    describe(overlay, [this](double time) { return plot_->time().coordToPixel(time); });
    overlay.hair.reset();
    if (const auto at = hairAge_ ? nearest(to_ - *hairAge_) : std::nullopt) {
        const Data::Period& period = shown_.periods[*at];
        const double middle = (period.from + period.to) / 2;
        ChartOverlay::Hair hair{plot_->time().coordToPixel(middle), whenText(period), agoText(period), {}};
        for (size_t i = 0; i < lines_.size(); ++i) {
            const double value = shown_.values[i][*at];
            hair.rows.push_back({Theme::current().kind(lines_[i].kind, lines_[i].second),
                                 lines_[i].label,
                                 valueText(value),
                                 {}});
            if (std::isfinite(value)) hair.rows.back().y = plot_->value().coordToPixel(value);
        }
        if (middle >= from_) overlay.hair = std::move(hair);
    }
    overlay.update();
}

/// The moment nearest to `time`, or the period that it lies in.
std::optional<size_t> Chart::nearest(double time) const {
    const auto& all = shown_.periods;
    if (all.empty()) return {};
    const auto middle = [](const Data::Period& period) { return (period.from + period.to) / 2; };
    auto found = std::lower_bound(all.begin(), all.end(), time,
                                  [&](const Data::Period& each, double at) { return middle(each) < at; });
    if (found == all.end() || (found != all.begin() && time - middle(found[-1]) < middle(*found) - time))
        --found;
    const bool isPeriod = found->to > found->from;
    if (isPeriod && (time < found->from || time > found->to)) return {};
    return static_cast<size_t>(found - all.begin());
}

QString Chart::valueText(double value) const {
    return std::isfinite(value) && scale_.text ? scale_.text(value) : QString("—");
}

void Chart::resizeEvent(QResizeEvent*) {
    layout()->activate();
    layOut();
}

void Chart::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = plot_->widget->mapFrom(this, event->pos());
    hairAge_.reset();
    if (plot_->overlay->area.contains(at)) hairAge_ = to_ - plot_->time().pixelToCoord(at.x());
    updateOverlay();
}

void Chart::leaveEvent(QEvent*) {
    hairAge_.reset();
    updateOverlay();
}

void Chart::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
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

void Chart::moveHair(int points) {
    if (shown_.periods.empty()) return;
    const int last = static_cast<int>(shown_.periods.size()) - 1;
    const auto at = hairAge_ ? nearest(to_ - *hairAge_) : std::nullopt;
    const int next = at ? std::clamp(static_cast<int>(*at) + points, 0, last) : last;
    const Data::Period& period = shown_.periods[static_cast<size_t>(next)];
    hairAge_ = std::min(to_ - (period.from + period.to) / 2, to_ - from_);
    updateOverlay();
}

void Chart::focusInEvent(QFocusEvent* event) {
    // A click needs no frame to tell where the keys go.
    plot_->overlay->focused =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    plot_->overlay->update();
}

void Chart::focusOutEvent(QFocusEvent*) {
    plot_->overlay->focused = false;
    plot_->overlay->update();
}

} // namespace quarn::desktop
