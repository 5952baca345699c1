#include "desktop/widgets/Tile.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/ElidedLabel.h"
#include "desktop/widgets/Figure.h"
#include "desktop/widgets/MiniGraph.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace quarn::desktop {

Tile::Tile(WidgetKind kind, QWidget* parent)
    : QFrame(parent),
      kind_(kind),
      title_(new QLabel(say(Reading::title(kind).c_str()))),
<<<<<<< HEAD
      figure_(new QLabel("—")),
      caption_(new QLabel),
      graph_(new MiniGraph(kind, fullScale(kind))) {
=======
      figure_(new Figure),
      caption_(new ElidedLabel),
      graph_(new MiniGraph(
          kind, kind == WidgetKind::cpu || kind == WidgetKind::memory || kind == WidgetKind::gpu ? 100 : 0)) {
>>>>>>> 2a8b55a (Add the overview, CPU, memory and GPU pages)
    setObjectName("tile");
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    title_->setFont(Theme::captionFont());
    title_->setContentsMargins(12, 0, 0, 0); // behind the dot of its hue
    caption_->setFont(Theme::captionFont());
    title_->setProperty("dim", true);
    caption_->setProperty("dim", true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::cardPadding, Theme::cardPadding, Theme::cardPadding,
                               Theme::cardPadding);
    column->setSpacing(2);
    column->addWidget(title_);
    column->addWidget(figure_);
    column->addWidget(caption_);
    column->addSpacing(Theme::gap - 2);
    column->addWidget(graph_);
}

void Tile::show(const QString& figure, const QString& caption, const std::vector<double>& graph) {
    figure_->setText(figure);
    caption_->show(caption);
    graph_->setValues(graph);
    const QString name = title_->text() + ": " + figure + ", " + caption;
    if (accessibleName() != name) setAccessibleName(name);
}

void Tile::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->pos())) Q_EMIT opened();
}

void Tile::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        Q_EMIT opened();
    else
        QFrame::keyPressEvent(event);
}

void Tile::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::current().kind(kind_));
    painter.drawEllipse(QPointF(title_->x() + 4, title_->geometry().center().y() + 1), 4, 4);
}

} // namespace quarn::desktop
