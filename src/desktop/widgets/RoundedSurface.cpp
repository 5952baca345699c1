#include "desktop/widgets/RoundedSurface.h"

#include "desktop/Theme.h"

#include <QPainter>
#include <QWidget>

namespace quarn::desktop {

void paintRoundedSurface(QWidget& window) {
    const auto& theme = Theme::current();
    QPainter painter(&window);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.line());
    painter.setBrush(theme.surface());
    painter.drawRoundedRect(QRectF(window.rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::corner,
                            Theme::corner);
}

} // namespace quarn::desktop
