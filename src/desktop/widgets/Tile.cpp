#include "desktop/widgets/Tile.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/Figure.h"
#include "desktop/widgets/MiniGraph.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace quarn::desktop {

namespace {

constexpr int wideTile = 200; ///< from here on every caption fits into one line

/// Room for two lines in narrow tiles, whatever the caption, so that tiles keep their height.
int captionHeight(int width) {
    return QFontMetrics(Theme::captionFont()).lineSpacing() * (width < wideTile ? 2 : 1) + 1;
}

} // namespace

Tile::Tile(WidgetKind kind, QWidget* parent)
    : QFrame(parent),
      kind_(kind),
      title_(new QLabel(say(Reading::title(kind).c_str()))),
      figure_(new Figure),
      caption_(new QLabel),
      graph_(new MiniGraph(kind, fullScale(kind))) {
    setObjectName("tile");
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    title_->setFont(Theme::captionFont());
    title_->setContentsMargins(12, 0, 0, 0); // behind the dot of its hue
    caption_->setFont(Theme::captionFont());
    title_->setProperty("dim", true);
    caption_->setProperty("dim", true);
    caption_->setTextFormat(Qt::PlainText);
    caption_->setWordWrap(true);
    caption_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    caption_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    caption_->setFixedHeight(captionHeight(wideTile));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::cardPadding, Theme::cardPadding, Theme::cardPadding,
                               Theme::cardPadding);
    column->setSpacing(2);
    column->addWidget(title_);
    column->addWidget(figure_);
    column->addWidget(caption_);
    column->addSpacing(Theme::gap - 2);
    column->addStretch();
    column->addWidget(graph_);
}

void Tile::setCrossfades(bool crossfades) { figure_->setCrossfades(crossfades); }

void Tile::show(const QString& figure, const QString& caption, const std::vector<double>& graph) {
    figure_->setText(figure);
    // A line may end behind a comma only, never between a figure and its unit.
    QString lines = caption;
    lines.replace(' ', QChar::Nbsp).replace(QString(',') + QChar::Nbsp, ", ");
    if (caption_->text() != lines) caption_->setText(lines);
    graph_->setValues(graph);
    const QString name = title_->text() + ": " + figure + ", " + caption;
    if (accessibleName() != name) setAccessibleName(name);
}

int Tile::heightForWidth(int width) const {
    return layout()->sizeHint().height() - caption_->height() + captionHeight(width);
}

void Tile::resizeEvent(QResizeEvent*) { caption_->setFixedHeight(captionHeight(width())); }

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
