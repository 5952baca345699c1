#include "desktop/widgets/ChartOverlay.h"

#include "desktop/Icon.h"
#include "desktop/Text.h"
#include "desktop/Theme.h"

#include <QPainter>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr int pad = 8;
constexpr int swatch = 8;

void paintSurface(QPainter& painter, const QRect& box) {
    painter.setPen(Theme::current().line());
    painter.setBrush(Theme::current().surface());
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
}

} // namespace

ChartOverlay::ChartOverlay(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void ChartOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(Theme::captionFont());
    paintTexts(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hair) paintHair(painter);
    if (paused) paintPause(painter);
    if (!focused) return;
    painter.setPen(Theme::current().accent());
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
}

void ChartOverlay::paintTexts(QPainter& painter) const {
    painter.setPen(Theme::current().dim());
    const int height = painter.fontMetrics().height();
    for (const auto& mark : marks) {
        const QRect place(area.right() + 1, static_cast<int>(mark.y) - height / 2, width() - area.right() - 1,
                          height);
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, mark.text);
    }
    const QRect below(area.left(), this->height() - height, area.width(), height);
    painter.drawText(below, Qt::AlignLeft | Qt::AlignBottom, from);
    painter.drawText(below, Qt::AlignRight | Qt::AlignBottom, until);
    paintTicks(painter, below);
}

/// Texts that would touch the one before, or stand out at an end, are left out.
void ChartOverlay::paintTicks(QPainter& painter, const QRect& below) const {
    int taken = 0;
    for (const auto& tick : ticks) {
        const int x = static_cast<int>(tick.x);
        painter.fillRect(QRect(x, area.bottom() - 2, 1, 6), Theme::current().dim());
        const int width = painter.fontMetrics().horizontalAdvance(tick.text);
        const QRect place(x - width / 2, below.top(), width, below.height());
        if (place.left() < taken || place.right() > this->width()) continue;
        painter.drawText(place, Qt::AlignHCenter | Qt::AlignBottom, tick.text);
        taken = place.right() + pad;
    }
}

void ChartOverlay::paintHair(QPainter& painter) const {
    const auto& theme = Theme::current();
    painter.setPen(QPen(theme.dim(), 1));
    painter.drawLine(QPointF(hair->x, area.top()), QPointF(hair->x, area.bottom()));
    for (const auto& row : hair->rows) {
        if (!row.y) continue;
        painter.setPen(QPen(theme.surface(), 1.5));
        painter.setBrush(row.color);
        painter.drawEllipse(QPointF(hair->x, *row.y), 3.5, 3.5);
    }

    const QFontMetrics metrics = painter.fontMetrics();
    const int line = metrics.height() + 2;
    int width = metrics.horizontalAdvance(hair->time) + 2 * pad + metrics.horizontalAdvance(hair->ago);
    for (const auto& row : hair->rows)
        width = std::max(width, swatch + pad + metrics.horizontalAdvance(row.label) + 2 * pad +
                                    metrics.horizontalAdvance(row.value));
    QRect box(0, area.top() + 2, width + 2 * pad, line * static_cast<int>(hair->rows.size() + 1) + pad);
    const int right = static_cast<int>(hair->x) + pad;
    box.moveLeft(right + box.width() <= area.right() ? right : static_cast<int>(hair->x) - pad - box.width());
    box.moveLeft(std::max(box.left(), area.left()));
    paintSurface(painter, box);

    QRect place(box.left() + pad, box.top() + pad / 2, width, line);
    painter.setPen(theme.dim());
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, hair->time);
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, hair->ago);
    for (const auto& row : hair->rows) {
        place.translate(0, line);
        painter.setPen(Qt::NoPen);
        painter.setBrush(row.color);
        painter.drawRoundedRect(QRect(place.left(), place.center().y() - swatch / 2 + 1, swatch, swatch), 2,
                                2);
        painter.setPen(theme.dim());
        painter.drawText(place.adjusted(swatch + pad, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, row.label);
        painter.setPen(theme.text());
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, row.value);
    }
}

void ChartOverlay::paintPause(QPainter& painter) const {
    const QString text = say("Paused");
    const int size = painter.fontMetrics().height();
    QRect box(area.left() + pad, area.top() + pad,
              size + painter.fontMetrics().horizontalAdvance(text) + 2 * pad, size + 6);
    paintSurface(painter, box);
    icon("pause").paint(&painter, QRect(box.left() + pad / 2, box.top() + 4, size - 2, size - 2));
    painter.setPen(Theme::current().text());
    painter.drawText(box.adjusted(0, 0, -pad, 0), Qt::AlignRight | Qt::AlignVCenter, text);
}

} // namespace quarn::desktop
