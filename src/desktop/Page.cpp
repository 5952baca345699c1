#include "desktop/Page.h"

#include "desktop/Theme.h"
#include "desktop/widgets/ElidedLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quarn::desktop {

Page::Page(PageContext& context, const QString& title, QWidget* parent)
    : QWidget(parent),
      context_(context),
      sentence_(new ElidedLabel),
      body_(new QWidget),
      tools_(new QWidget),
      content_(new QVBoxLayout(body_)) {
    setAccessibleName(title);
    auto* heading = new QLabel(title);
    heading->setFont(Theme::pageTitleFont());
    sentence_->setProperty("dim", true);

    auto* names = new QVBoxLayout;
    names->setSpacing(2);
    names->addWidget(heading);
    names->addWidget(sentence_);
    auto* tools = new QHBoxLayout(tools_);
    tools->setContentsMargins(0, 0, 0, 0);
    tools->setSpacing(Theme::gap);
    auto* top = new QHBoxLayout;
    top->addLayout(names, 1);
    top->addWidget(tools_, 0, Qt::AlignBottom);

    content_->setContentsMargins(0, 0, 0, 0);
    content_->setSpacing(Theme::gap);
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(body_);
    scroll->viewport()->setAutoFillBackground(false);
    body_->setAutoFillBackground(false);
    scroll_ = scroll;

    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(2 * Theme::gap, 2 * Theme::gap, 2 * Theme::gap, Theme::gap);
    whole->setSpacing(Theme::gap + Theme::gap / 2);
    whole->addLayout(top);
    whole->addWidget(scroll_, 1);
}

void Page::search(const QString&) {}

void Page::setSentence(const QString& sentence) {
    if (sentence_->text() == sentence) return;
    sentence_->show(sentence);
    setAccessibleDescription(sentence);
}

QVBoxLayout& Page::content() { return *content_; }

void Page::contentFills() {
    auto* scroll = static_cast<QScrollArea*>(scroll_);
    scroll->takeWidget();
    delete layout()->replaceWidget(scroll, body_);
    scroll->deleteLater();
    scroll_ = body_;
    body_->show();
}

void Page::addTool(QWidget* tool) { tools_->layout()->addWidget(tool); }

} // namespace quarn::desktop
