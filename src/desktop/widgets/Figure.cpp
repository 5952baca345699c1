#include "desktop/widgets/Figure.h"

#include "desktop/Theme.h"

#include <QPainter>
#include <utility>

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
    constexpr int fadeMs = 250;
    fading_.setStartValue(0.0);
    fading_.setEndValue(1.0);
    fading_.setDuration(fadeMs);
    connect(&fading_, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void Figure::setText(const QString& text) {
    if (text == text_) return;
    former_ = std::exchange(text_, text);
    crossfades_&& isVisible() ? fading_.start() : fading_.stop();
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
    if (fading_.state() == QAbstractAnimation::Running) {
        const double done = fading_.currentValue().toDouble();
        painter.setOpacity(1 - done);
        paintText(painter, former_);
        painter.setOpacity(done);
    }
    paintText(painter, text_);
}

void Figure::paintText(QPainter& painter, const QString& text) const {
    const auto [number, unit] = partsOf(text);
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
