#include "desktop/ControlStyle.h"

#include "desktop/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

namespace quarn::desktop {

namespace {

void drawCheckBox(const QStyleOption& option, QPainter& painter) {
    const auto& theme = Theme::current();
    const bool isOn = option.state & QStyle::State_On;
    const bool isEnabled = option.state & QStyle::State_Enabled;
    const bool isFocused = option.state & (QStyle::State_HasFocus | QStyle::State_MouseOver);
    const QColor filled = isEnabled ? theme.accent() : theme.dim();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(option.rect.width(), option.rect.height()) - 1;
    QRectF box(0, 0, side, side);
    box.moveCenter(QRectF(option.rect).center());
    painter.setPen(isOn || isFocused ? filled : theme.dim());
    painter.setBrush(isOn ? filled : theme.surface());
    painter.drawRoundedRect(box, 3, 3);
    if (isOn) {
        QPen pen(Qt::white, 1.8);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        painter.setPen(pen);
        painter.translate(box.topLeft());
        painter.drawPolyline(
            QPolygonF({{0.22 * side, 0.52 * side}, {0.42 * side, 0.72 * side}, {0.78 * side, 0.3 * side}}));
    }
    painter.restore();
}

} // namespace

ControlStyle::ControlStyle() : QProxyStyle("Fusion") {}

void ControlStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    if (element == PE_IndicatorCheckBox || element == PE_IndicatorItemViewItemCheck)
        drawCheckBox(*option, *painter);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

} // namespace quarn::desktop
