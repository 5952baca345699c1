#include "desktop/widgets/FlashLabel.h"

#include <QPainter>

namespace quarn::desktop {

FlashLabel::FlashLabel(const QColor& tint, QWidget* parent) : QLabel(parent), tint_(tint) {
    constexpr int flashMs = 350;
    setTextFormat(Qt::PlainText);
    setContentsMargins(bleed, 0, 0, 0);
    fading_.setSingleShot(true);
    fading_.setInterval(flashMs);
    connect(&fading_, &QTimer::timeout, this, [this] { update(); });
}

void FlashLabel::show(const QString& text) {
    if (text == this->text()) return;
    if (flashes_ && !this->text().isEmpty()) fading_.start();
    setText(text);
}

void FlashLabel::paintEvent(QPaintEvent* event) {
    if (isFlashing()) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor tint = tint_;
        tint.setAlphaF(0.18F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint);
        const int width = fontMetrics().horizontalAdvance(text()) + 2 * bleed;
        painter.drawRoundedRect(QRect(0, 2, width, height() - 4), bleed, bleed);
    }
    QLabel::paintEvent(event);
}

} // namespace quarn::desktop
