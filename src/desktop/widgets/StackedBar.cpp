#include "desktop/widgets/StackedBar.h"

#include "desktop/Theme.h"
#include "desktop/widgets/TextValue.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace quarn::desktop {

StackedBar::StackedBar(WidgetKind kind, QWidget* parent) : QWidget(parent), kind_(kind) {
    setTextValue(this, {});
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize StackedBar::sizeHint() const { return {300, 22}; }

void StackedBar::show(const std::vector<Part>& parts, const QString& spoken) {
    setTextValue(this, spoken);
    if (parts == parts_) return;
    parts_ = parts;
    update();
}

std::vector<QRect> StackedBar::places() const {
    double sum = 0;
    for (const auto& part : parts_) sum += part.share;
    const double scale = width() / std::max(sum, 1.0);
    std::vector<QRect> places;
    double at = 0;
    for (const auto& part : parts_) {
        const int left = static_cast<int>(std::lround(at));
        at += part.share * scale;
        places.emplace_back(left, 0, static_cast<int>(std::lround(at)) - left, height());
    }
    return places;
}

void StackedBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath frame;
    frame.addRoundedRect(rect(), 4, 4);
    painter.setClipPath(frame);
    painter.fillRect(rect(), Theme::current().line());
    const auto rects = places();
    for (size_t i = 0; i < parts_.size(); ++i) {
        if (rects[i].width() == 0) continue;
        painter.fillRect(rects[i], Theme::current().shade(kind_, parts_[i].strength));
        if (i > 0) painter.fillRect(QRect(rects[i].left(), 0, 1, height()), Theme::current().surface());
    }
}

bool StackedBar::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const auto rects = places();
    for (size_t i = 0; i < rects.size(); ++i)
        if (rects[i].contains(help->pos()))
            QToolTip::showText(help->globalPos(), parts_[i].tooltip.toHtmlEscaped(), this, rects[i]);
    return true;
}

} // namespace quarn::desktop
