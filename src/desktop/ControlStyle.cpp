#include "desktop/ControlStyle.h"

#include "desktop/Theme.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>

namespace quarn::desktop {

namespace {

constexpr double fieldCorner = 6;
constexpr int fieldHeight = Theme::rowHeight;

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

/// The face of a button, a choice or a number field.
void drawField(const QStyleOption& option, QPainter& painter, bool isPressed) {
    const auto& theme = Theme::current();
    const bool isEnabled = option.state & QStyle::State_Enabled;
    const bool isHovered = isEnabled && option.state & QStyle::State_MouseOver;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.state & QStyle::State_HasFocus ? theme.accent() : theme.outline());
    painter.setBrush(isPressed ? theme.selection() : isHovered ? theme.hover() : theme.surface());
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), fieldCorner, fieldCorner);
    painter.restore();
}

/// A small angle that points down, or up.
void drawChevron(const QRect& place, QPainter& painter, double down, bool isEnabled) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(isEnabled ? Theme::current().dim() : Theme::current().outline(), 1.5);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    painter.translate(QRectF(place).center());
    painter.drawPolyline(QPolygonF({{-3.5, -1.75 * down}, {0, 1.75 * down}, {3.5, -1.75 * down}}));
    painter.restore();
}

bool isLink(const QWidget* widget) { return widget && widget->objectName() == "link"; }

} // namespace

ControlStyle::ControlStyle() : QProxyStyle("Fusion") {}

void ControlStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck: drawCheckBox(*option, *painter); return;
    case PE_PanelButtonCommand:
    case PE_PanelButtonTool: {
        const bool isPressed = option->state & (State_Sunken | State_On);
        const bool isFlat =
            option->state & State_AutoRaise && !isPressed && !(option->state & State_MouseOver);
        if (!isFlat) drawField(*option, *painter, isPressed);
        return;
    }
    case PE_FrameFocusRect:
        // Fields show the focus by their outline.
        if (qobject_cast<const QAbstractButton*>(widget) && !qobject_cast<const QCheckBox*>(widget)) return;
        break;
    default: break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ControlStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    const bool isEnabled = option->state & State_Enabled;
    if (control == CC_ComboBox) {
        drawField(*option, *painter, option->state & State_Sunken);
        drawChevron(proxy()->subControlRect(control, option, SC_ComboBoxArrow, widget), *painter, 1,
                    isEnabled);
    } else if (control == CC_SpinBox) {
        drawField(*option, *painter, false);
        drawChevron(proxy()->subControlRect(control, option, SC_SpinBoxUp, widget), *painter, -1, isEnabled);
        drawChevron(proxy()->subControlRect(control, option, SC_SpinBoxDown, widget), *painter, 1, isEnabled);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QSize ControlStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                     const QWidget* widget) const {
    QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
        if (isLink(widget)) break;
        whole.setWidth(whole.width() + Theme::gap);
        [[fallthrough]];
    case CT_ComboBox:
    case CT_SpinBox: whole.setHeight(std::max(whole.height(), fieldHeight)); break;
    case CT_ToolButton:
        if (!(option->state & State_AutoRaise))
            whole = {whole.width() + Theme::gap, std::max(whole.height(), fieldHeight)};
        break;
    default: break;
    }
    return whole;
}

} // namespace quarn::desktop
