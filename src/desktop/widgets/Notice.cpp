#include "desktop/widgets/Notice.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/CloseButton.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace quarn::desktop {

Notice::Notice(QWidget* parent) : QFrame(parent), text_(new QLabel) {
    setObjectName("notice");
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = closeButton(say("Dismiss"), say("Dismiss"));
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Theme::cardPadding, Theme::gap, Theme::gap, Theme::gap);
    row->addWidget(text_, 1);
    row->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void Notice::tell(const QString& sentence) {
    text_->setText(sentence);
    setAccessibleName(sentence);
    setVisible(!sentence.isEmpty());
}

QString Notice::sentence() const { return isHidden() ? QString() : text_->text(); }

} // namespace quarn::desktop
