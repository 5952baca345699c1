#include "desktop/widgets/Figure.h"

#include "desktop/Theme.h"

#include <QPainter>

namespace quarn::desktop {

namespace {

constexpr int beforeUnit = 5;

struct Parts {
    QString number;
    QString unit;
};

Parts partsOf(const QString& text) {
    const auto blank = text.indexOf(' ');
    return blank < 0 ? Parts{text, {}} : Parts{text.left(blank), text.mid(blank + 1)};
}

} // namespace

Figure::Figure(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Figure::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    update();
}

QSize Figure::sizeHint() const {
    const auto [number, unit] = partsOf(text_);
    return {QFontMetrics(Theme::figureFont()).horizontalAdvance(number) + beforeUnit +
                QFontMetrics(font()).horizontalAdvance(unit),
            QFontMetrics(Theme::figureFont()).height()};
}

void Figure::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const auto [number, unit] = partsOf(text_);
    const QFontMetrics big(Theme::figureFont());
    const int baseline = (height() + big.ascent() - big.descent()) / 2;
    const QString shown = big.elidedText(number, Qt::ElideRight, width());
    painter.setFont(Theme::figureFont());
    painter.setPen(shown == "—" ? Theme::current().dim() : Theme::current().text());
    painter.drawText(QPoint(0, baseline), shown);
    painter.setFont(font());
    painter.setPen(Theme::current().dim());
    painter.drawText(QPoint(big.horizontalAdvance(shown) + beforeUnit, baseline), unit);
}

} // namespace quarn::desktop
