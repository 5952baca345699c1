#include "ui/modules/TableLayout.h"

#include "core/Scan.h"

namespace quarn {

namespace {

constexpr int widest = 10'000;

} // namespace

std::string TableLayout::text() const {
    std::string text;
    for (const Column& column : columns) {
        if (!text.empty()) text += ',';
        if (column.visible == Column::Visible::no) text += '-';
        text.append(column.id).append(" ").append(std::to_string(column.width));
    }
    text += ';';
    if (!sortedBy.empty()) text.append(sortedBy).append(direction == Direction::ascending ? " asc" : " desc");
    return text;
}

TableLayout TableLayout::fromText(std::string_view text) {
    TableLayout layout;
    std::string_view columns = scutil::takeUntil(text, ';');
    while (!columns.empty()) {
        std::string_view each = scutil::takeUntil(columns, ',');
        Column column;
        if (each.starts_with('-')) {
            column.visible = Column::Visible::no;
            each.remove_prefix(1);
        }
        column.id = scutil::takeWord(each);
        const auto width = scutil::toNumber<int>(scutil::takeWord(each));
        if (column.id.empty() || !width || *width < 0 || *width > widest) continue;
        column.width = *width;
        layout.columns.push_back(std::move(column));
    }
    layout.sortedBy = scutil::takeWord(text);
    if (scutil::takeWord(text) == "desc") layout.direction = Direction::descending;
    return layout;
}

} // namespace quarn
