#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarn {

/// How a person arranged a table, as it is stored: "name 240,cpu 80,-user 90;cpu desc". Columns stand in
/// their order, a minus sign before the hidden ones; behind the semicolon what the rows are sorted by.
struct TableLayout {
    struct Column {
        std::string id;
        int width = 0; ///< pixels; 0 for the built-in one
        enum class Visible { no, yes } visible = Visible::yes;
        bool operator==(const Column&) const = default;
    };
    enum class Direction { ascending, descending };

    std::vector<Column> columns;
    std::string sortedBy; ///< id, empty for none
    Direction direction = Direction::ascending;

    bool operator==(const TableLayout&) const = default;
    std::string text() const;
    /// Whatever is not understood is left out; never fails.
    static TableLayout fromText(std::string_view text);
};

} // namespace quarn
