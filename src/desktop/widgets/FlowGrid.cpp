#include "desktop/widgets/FlowGrid.h"

#include "desktop/Theme.h"

#include <QEvent>
#include <QVarLengthArray>
#include <algorithm>

namespace quarn::desktop {

FlowGrid::FlowGrid(int minimumWidth, Lead lead, QWidget* parent)
    : QWidget(parent), minimumWidth_(minimumWidth), lead_(lead) {
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
    const int others = static_cast<int>(shown.size()) - 1;
    const int least = others + (lead_ == Lead::wide ? 2 : 1);
    const int rows = (least + fit - 1) / fit;
    const int columns = (least + rows - 1) / rows; // evenly filled rows
    const int leadSpan = lead_ == Lead::wide ? columns - others % columns : 1;
    const auto widthOf = [&](int cells) { return (width + Theme::gap) * cells / columns - Theme::gap; };
    int y = 0;
    for (int i = 0; i < shown.size();) {
        struct Cell {
            QWidget* child;
            int first;
            int span;
        };
        QVarLengthArray<Cell, 16> row;
        int height = 0;
        for (int column = 0; i < shown.size() && column < columns; ++i) {
            const int span = std::min(i == 0 ? leadSpan : 1, columns);
            const int cell = widthOf(span);
            row.append({shown[i], column, span});
            height = std::max(height, shown[i]->hasHeightForWidth() ? shown[i]->heightForWidth(cell)
                                                                    : shown[i]->sizeHint().height());
            column += span;
        }
        for (const Cell& cell : row)
            if (apply)
                cell.child->setGeometry(widthOf(cell.first) + Theme::gap, y, widthOf(cell.span), height);
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
