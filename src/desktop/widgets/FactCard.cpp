#include "desktop/widgets/FactCard.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"
#include "desktop/widgets/FactTable.h"
#include "desktop/widgets/FlowGrid.h"

#include <QLabel>
#include <QVBoxLayout>

namespace quarn::desktop {

FactCard::FactCard(const QString& title, int groupWidth, QWidget* parent)
    : Card(title, parent), grid_(new FlowGrid(groupWidth)) {
    content().addWidget(grid_);
}

void FactCard::show(const std::vector<FactGroup>& groups) {
    while (groups_.size() < groups.size()) {
        const Group group{new QWidget, new QLabel, new FactTable};
        group.title->setFont(Theme::captionFont());
        group.title->setProperty("dim", true);
        auto* column = new QVBoxLayout(group.whole);
        column->setContentsMargins(0, 0, Theme::gap, 0);
        column->setSpacing(4);
        column->addWidget(group.title);
        column->addWidget(group.facts);
        column->addStretch();
        grid_->add(group.whole);
        groups_.push_back(group);
    }
    for (size_t i = 0; i < groups_.size(); ++i) {
        const bool used = i < groups.size();
        if (groups_[i].whole->isHidden() == used) groups_[i].whole->setVisible(used);
        if (!used) continue;
        const QString title = say(groups[i].title);
        if (groups_[i].title->text() != title) groups_[i].title->setText(title);
        groups_[i].title->setVisible(!title.isEmpty());
        groups_[i].facts->show(groups[i].facts);
    }
}

} // namespace quarn::desktop
