#include "cli/view/Canvas.h"

#include "HelperKit/Utf8.h"

#include <algorithm>

namespace quarn::cli {

Canvas::Canvas(Size size, Charset charset)
    : size_{std::max(size.columns, 1), std::max(size.rows, 1)},
      charset_(charset),
      cells_(static_cast<size_t>(size_.columns) * static_cast<size_t>(size_.rows)) {}

int Canvas::put(int row, int column, std::string_view text, Style style, int end) {
    end = std::min(end, size_.columns);
    if (row < 0 || row >= size_.rows || column < 0 || column >= end) return column;
    const std::string safe = fitted(text, end - column, charset_);
    Cell* base = nullptr; // what a combining mark joins
    for (std::string_view rest = safe; !rest.empty();) {
        const Glyph glyph = takeGlyph(rest, Charset::utf8); // `safe` is in the charset already
        if (glyph.cells == 0) {
            if (base != nullptr) base->mark = glyph.code;
            continue;
        }
        set(row, column, glyph, style);
        base = &cells_[index(row, column)];
        column += glyph.cells;
    }
    return column;
}

void Canvas::putRight(int row, int begin, int end, std::string_view text, Style style) {
    const int column = end - width(text);
    if (column >= begin) put(row, column, text, style, end);
}

void Canvas::set(int row, int column, const Glyph& glyph, Style style) {
    for (int i = 0; i < glyph.cells; ++i) uncover(row, column + i);
    cells_[index(row, column)] = {glyph.code, 0, style, static_cast<uint8_t>(glyph.cells)};
    if (glyph.cells == 2) cells_[index(row, column + 1)] = {U' ', 0, style, 0};
}

/// Overwriting one half of a wide character leaves a blank in the other.
void Canvas::uncover(int row, int column) {
    const Cell& cell = cells_[index(row, column)];
    if (cell.cells == 0) cells_[index(row, column - 1)] = {};
    if (cell.cells == 2) cells_[index(row, column + 1)] = {};
}

std::string Canvas::rowText(int row) const {
    std::string text;
    size_t end = 0;
    for (int column = 0; column < size_.columns; ++column) {
        const Cell& cell = at(row, column);
        if (cell.cells == 0) continue;
        appendCharacter(text, cell.glyph);
        if (cell.mark != 0) appendCharacter(text, cell.mark);
        if (cell.glyph != U' ') end = text.size();
    }
    text.resize(end);
    return text;
}

} // namespace quarn::cli
