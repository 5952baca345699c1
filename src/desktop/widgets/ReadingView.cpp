#include "desktop/widgets/ReadingView.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/FlashLabel.h"
#include "desktop/widgets/MiniGraph.h"
#include "ui/modules/LiveHistory.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace quarn::desktop {

ReadingView::ReadingView(WidgetKind kind, int graphHeight, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      titleLabel_(new QLabel(say(Reading::title(kind).c_str()))),
      value_(new FlashLabel(Theme::current().kind(kind))),
      caption_(new QLabel),
      graph_(new MiniGraph(kind, fullScale(kind))) {
    constexpr int left = FlashLabel::bleed;              // where all of it begins, as the figure does
    titleLabel_->setContentsMargins(left + 12, 0, 0, 0); // behind the dot of its hue
    caption_->setContentsMargins(left, 0, 0, 0);
    value_->setFont(Theme::figureFont());
    for (auto* label : {titleLabel_, caption_}) {
        label->setFont(Theme::captionFont());
        label->setTextFormat(Qt::PlainText);
        label->setProperty("dim", true);
    }
    for (QLabel* label : {titleLabel_, static_cast<QLabel*>(value_), caption_})
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    graph_->setFixedHeight(graphHeight);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(titleLabel_);
    column->addWidget(value_);
    column->addWidget(caption_);
    column->addSpacing(Theme::gap - 2);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(left, 0, left, 0);
    row->addWidget(graph_);
    column->addLayout(row);
}

void ReadingView::show(const Reading& reading, const LiveHistory& history, double span) {
    constexpr size_t mostColumns = 60;
    value_->show(toQt(reading.headline(kind_)));
    if (const QString caption = toQt(reading.caption(kind_)); caption != caption_->text()) {
        caption_->setText(caption);
        caption_->setToolTip(caption);
    }
    graph_->setValues(history.peaks(seriesOf(kind_), span, history.slicesWithin(span, mostColumns)));
    if (const QString name = spoken(); name != accessibleName()) setAccessibleName(name);
}

void ReadingView::setFlashes(bool flashes) { value_->setFlashes(flashes); }

void ReadingView::applyTheme() {
    value_->setTint(Theme::current().kind(kind_));
    update();
    graph_->update();
}

QString ReadingView::spoken() const {
    return titleLabel_->text() + ": " + value_->text() + ", " + caption_->text();
}

void ReadingView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::current().kind(kind_));
    painter.drawEllipse(
        QPointF(titleLabel_->x() + FlashLabel::bleed + 4, titleLabel_->geometry().center().y() + 1), 4, 4);
}

} // namespace quarn::desktop
