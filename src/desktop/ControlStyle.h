#pragma once

#include <QProxyStyle>

namespace quarn::desktop {

/// The style of controls, with check boxes in the theme's colours: the usual ones have outlines that cannot
/// be seen on a dark surface.
class ControlStyle final : public QProxyStyle {
public:
    ControlStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace quarn::desktop
