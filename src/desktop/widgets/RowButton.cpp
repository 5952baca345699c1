#include "desktop/widgets/RowButton.h"

#include "desktop/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace quarn::desktop {

RowButton::RowButton(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void RowButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void RowButton::paintBackground(QPainter& painter) const {
    if (!underMouse() && !hasFocus()) return;
    QColor tint = hasFocus() ? Theme::current().accent() : Theme::current().text();
    tint.setAlphaF(hasFocus() ? 0.14F : 0.05F);
    painter.fillRect(rect(), tint);
}

} // namespace quarn::desktop
