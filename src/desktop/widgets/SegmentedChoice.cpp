#include "desktop/widgets/SegmentedChoice.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QToolButton>

namespace quarn::desktop {

SegmentedChoice::SegmentedChoice(const QStringList& texts, const QString& accessibleName, QWidget* parent)
    : QWidget(parent), buttons_(new QButtonGroup(this)) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (const QString& text : texts) {
        auto* button = new QToolButton;
        button->setText(text);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        buttons_->addButton(button, static_cast<int>(buttons_->buttons().size()));
        row->addWidget(button);
    }
    connect(buttons_, &QButtonGroup::idClicked, this, &SegmentedChoice::chosen);
}

int SegmentedChoice::current() const { return buttons_->checkedId(); }

void SegmentedChoice::setCurrent(int index) {
    if (auto* button = buttons_->button(index)) return button->setChecked(true);
    buttons_->setExclusive(false);
    for (auto* button : buttons_->buttons()) button->setChecked(false);
    buttons_->setExclusive(true);
}

} // namespace quarn::desktop
