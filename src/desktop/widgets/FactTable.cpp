#include "desktop/widgets/FactTable.h"

#include "desktop/Text.h"
#include "desktop/Theme.h"

#include <QGridLayout>
#include <QLabel>

namespace quarn::desktop {

FactTable::FactTable(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(2 * Theme::gap);
    grid_->setVerticalSpacing(4);
    grid_->setColumnStretch(1, 1);
}

void FactTable::show(const std::vector<Fact>& facts) {
    while (rows_.size() < facts.size()) {
        const int at = static_cast<int>(rows_.size());
        const Row row{new QLabel, new QLabel};
        row.label->setProperty("dim", true);
        row.value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        row.value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        row.value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        row.value->setWordWrap(true);
        for (auto* label : {row.label, row.value}) label->setTextFormat(Qt::PlainText);
        grid_->addWidget(row.label, at, 0);
        grid_->addWidget(row.value, at, 1);
        rows_.push_back(row);
    }
    for (size_t i = 0; i < rows_.size(); ++i) {
        const bool used = i < facts.size();
        if (rows_[i].label->isHidden() == used) {
            rows_[i].label->setVisible(used);
            rows_[i].value->setVisible(used);
        }
        if (!used) continue;
        const auto set = [](QLabel* label, const QString& text) {
            if (label->text() != text) label->setText(text);
        };
        set(rows_[i].label, facts[i].label);
        set(rows_[i].value, facts[i].value);
        const QString& tip = facts[i].tooltip.isEmpty() ? facts[i].value : facts[i].tooltip;
        if (rows_[i].value->toolTip() != tip) rows_[i].value->setToolTip(tip);
    }
}

void FactTable::show(const std::vector<quarn::Fact>& facts) {
    std::vector<Fact> shown;
    shown.reserve(facts.size());
    for (const auto& fact : facts) {
        const bool known = !fact.value.empty();
        QString reason = known ? QString() : say(fact.reason);
        if (!reason.isEmpty()) reason = reason.left(1).toUpper() + reason.mid(1) + ".";
        shown.push_back({say(fact.name), known ? toQt(fact.value) : "—", reason});
    }
    show(shown);
}

} // namespace quarn::desktop
