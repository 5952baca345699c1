#include "desktop/tray/StatusIcon.h"

#include "desktop/DrawnIcon.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QHash>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

namespace {

/// The largest font in which the digits of `text` fill the box; the same for all figures of one shape, so
/// that a figure does not change its size from tick to tick.
const QFont& fitting(const QString& text, QSize box) {
    static QHash<QString, QFont> known;
    QString shape = text;
    for (QChar& c : shape)
        if (c.isDigit()) c = u'0';
    const QString key = QString("%1 %2 %3").arg(shape).arg(box.width()).arg(box.height());
    if (const auto found = known.constFind(key); found != known.constEnd()) return *found;
    QFont font = QApplication::font();
    font.setWeight(QFont::DemiBold);
    if (shape.size() > 2) font.setStretch(QFont::SemiCondensed);
    for (int pixels = 2 * box.height(); pixels > 5; --pixels) {
        font.setPixelSize(pixels);
        const QRectF ink = QFontMetricsF(font).tightBoundingRect(shape);
        if (ink.width() <= box.width() && ink.height() <= box.height()) break;
    }
    return *known.insert(key, font);
}

/// Centres the ink of `text` in `box`, with an edge of the opposite lightness around it.
void drawFigure(QPainter& painter, const QString& text, const QRect& box, const QColor& color) {
    painter.setFont(fitting(text, box.size()));
    const QRectF ink = QFontMetricsF(painter.font()).tightBoundingRect(text);
    const QPointF at(std::round(box.x() + (box.width() - ink.width()) / 2 - ink.x()),
                     std::round(box.y() + (box.height() - ink.height()) / 2 - ink.y()));
    QColor edge = color.lightness() > 127 ? Qt::black : Qt::white;
    edge.setAlpha(120);
    painter.setPen(edge);
    for (const double x : {-1, 0, 1})
        for (const double y : {-1, 0, 1})
            if (x != 0 || y != 0) painter.drawText(at + QPointF(x, y), text);
    painter.setPen(color);
    painter.drawText(at, text);
}

/// One column a pixel, each the peak of the slices that fall on it; the newest at the right.
void drawGraph(QPainter& painter, const std::vector<double>& graph, const QRect& box, const QColor& color) {
    QColor faint = color;
    faint.setAlpha(70);
    painter.fillRect(box, faint);
    const auto count = static_cast<int>(graph.size());
    for (int x = 0; x < box.width(); ++x) {
        const int first = x * count / box.width();
        const int last = std::max(first + 1, (x + 1) * count / box.width());
        double share = -1;
        for (int i = first; i < std::min(last, count); ++i)
            share = std::max(share, graph[static_cast<size_t>(i)]);
        if (share < 0) continue;
        const int height = std::max(1, static_cast<int>(std::lround(share * box.height())));
        painter.fillRect(box.x() + x, box.y() + box.height() - height, 1, height, color);
    }
}

class StatusIconEngine final : public DrawnIcon {
public:
    explicit StatusIconEngine(MenuBarModule::Rendering rendering) : rendering_(std::move(rendering)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::TextAntialiasing);
        const int side = rect.height();
        const int rule = std::max(1, side / 12); // the hue under a figure without a graph
        switch (rendering_.style) {
        case MenuBarStyle::valueOnly:
            drawFigure(*painter, rendering_.figure, rect.adjusted(0, 1, 0, -rule - 2), rendering_.textColor);
            painter->fillRect(rect.adjusted(0, side - rule, 0, 0), rendering_.graphColor);
            break;
        case MenuBarStyle::graphOnly:
            drawGraph(*painter, rendering_.graph, rect.adjusted(0, 1, 0, -1), rendering_.graphColor);
            break;
        case MenuBarStyle::both: {
            const int figureHeight = side * 9 / 16;
            drawFigure(*painter, rendering_.figure, QRect(rect.x(), rect.y(), rect.width(), figureHeight),
                       rendering_.textColor);
            drawGraph(*painter, rendering_.graph, rect.adjusted(0, figureHeight + 1, 0, 0),
                      rendering_.graphColor);
            break;
        }
        }
        painter->restore();
    }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}};
    }
    QIconEngine* clone() const override { return new StatusIconEngine(rendering_); }

private:
    MenuBarModule::Rendering rendering_;
};

} // namespace

QIcon statusIcon(const MenuBarModule::Rendering& rendering) { return QIcon(new StatusIconEngine(rendering)); }

} // namespace quarn::desktop
