#pragma once

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace quarn::desktop {

/// An icon that is painted anew for each size it is asked for.
class DrawnIcon : public QIconEngine {
public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) final {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
};

} // namespace quarn::desktop
