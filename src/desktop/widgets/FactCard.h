#pragma once

#include "desktop/widgets/Card.h"
#include "ui/modules/Facts.h"

namespace quarn::desktop {

class FactTable;
class FlowGrid;

/// A card with groups of facts, side by side where there is room.
class FactCard final : public Card {
    Q_OBJECT
public:
    /// `groupWidth`: the least width of a group in pixels.
    explicit FactCard(const QString& title, int groupWidth = 280, QWidget* parent = nullptr);
    /// Shows these; only what changed is touched.
    void show(const std::vector<FactGroup>& groups);

private:
    struct Group {
        QWidget* whole;
        QLabel* title;
        FactTable* facts;
    };
    FlowGrid* grid_;
    std::vector<Group> groups_;
};

} // namespace quarn::desktop
