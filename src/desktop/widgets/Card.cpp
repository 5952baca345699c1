#include "desktop/widgets/Card.h"

#include "desktop/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>

namespace quarn::desktop {

Card::Card(const QString& title, QWidget* parent)
    : QFrame(parent),
      title_(new QLabel),
      note_(new QLabel),
      top_(new QHBoxLayout),
      content_(new QVBoxLayout) {
    setObjectName("card");
    title_->setFont(Theme::cardTitleFont());
    title_->setTextFormat(Qt::PlainText);
    note_->setFont(Theme::captionFont());
    note_->setTextFormat(Qt::PlainText);
    note_->setProperty("dim", true);
    note_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    top_->addWidget(title_);
    top_->addWidget(note_, 1);
    content_->setSpacing(Theme::gap);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(Theme::cardPadding, Theme::cardPadding, Theme::cardPadding, Theme::cardPadding);
    whole->setSpacing(Theme::gap);
    whole->addLayout(top_);
    whole->addLayout(content_, 1);
    setTitle(title);
    note_->hide();
}

void Card::setTitle(const QString& title) {
    title_->setText(title);
    title_->setVisible(!title.isEmpty());
    setAccessibleName(title);
}

void Card::addCorner(QWidget* widget) { top_->addWidget(widget); }

void Card::setNote(const QString& note) {
    if (note_->text() == note && note_->isHidden() == note.isEmpty()) return;
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
}

FlowGrid::FlowGrid(int minimumWidth, QWidget* parent) : QWidget(parent), minimumWidth_(minimumWidth) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void FlowGrid::add(QWidget* child) {
    child->setParent(this);
    child->show();
    children_.append(child);
    updateGeometry();
}

int FlowGrid::place(int width, bool apply) const {
    QList<QWidget*> shown;
    for (auto* child : children_)
        if (!child->isHidden()) shown.append(child);
    if (shown.isEmpty()) return 0;
    const int fit = std::max(1, (width + Theme::gap) / (minimumWidth_ + Theme::gap));
    const int rows = (static_cast<int>(shown.size()) + fit - 1) / fit;
    const int columns = (static_cast<int>(shown.size()) + rows - 1) / rows; // evenly filled rows
    const int cell = (width - (columns - 1) * Theme::gap) / columns;
    int y = 0;
    for (int first = 0; first < shown.size(); first += columns) {
        const int last = std::min(first + columns, static_cast<int>(shown.size()));
        int height = 0;
        for (int i = first; i < last; ++i) {
            const auto* child = shown[i];
            height = std::max(height, child->hasHeightForWidth() ? child->heightForWidth(cell)
                                                                 : child->sizeHint().height());
        }
        for (int i = first; apply && i < last; ++i)
            shown[i]->setGeometry((i - first) * (cell + Theme::gap), y, cell, height);
        y += height + Theme::gap;
    }
    return y - Theme::gap;
}

int FlowGrid::heightForWidth(int width) const { return place(width, false); }
QSize FlowGrid::sizeHint() const { return {4 * minimumWidth_, place(4 * minimumWidth_, false)}; }
// How high it must be depends on the width alone: a height of its own would outlive a former width.
QSize FlowGrid::minimumSizeHint() const { return {minimumWidth_, 0}; }

void FlowGrid::resizeEvent(QResizeEvent*) { place(width(), true); }

bool FlowGrid::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        place(width(), true);
    }
    return QWidget::event(event);
}

} // namespace quarn::desktop
