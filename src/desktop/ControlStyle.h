#pragma once

#include <QProxyStyle>

namespace quarn::desktop {

/// Check boxes, buttons, choices and number fields as the theme has them: flat, with round corners and
/// outlines that can be seen on a dark surface.
class ControlStyle final : public QProxyStyle {
public:
    ControlStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
};

} // namespace quarn::desktop
