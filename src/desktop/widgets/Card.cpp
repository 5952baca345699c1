#include "desktop/widgets/Card.h"

#include "desktop/Theme.h"

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

void Card::addCorner(QWidget* widget) {
    top_->addWidget(widget);
    widget->ensurePolished();
    // What is higher than the title reaches into the room around it, so that the titles of cards side by side
    // are level.
    constexpr int padding = Theme::cardPadding;
    const int above = std::max(0, (widget->sizeHint().height() - title_->sizeHint().height()) / 2);
    layout()->setContentsMargins(padding, std::max(0, padding - above), padding, padding);
}

void Card::setNote(const QString& note) {
    if (note_->text() == note && note_->isHidden() == note.isEmpty()) return;
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
}

} // namespace quarn::desktop
