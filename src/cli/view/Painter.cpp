#include "cli/view/Painter.h"

#include "HelperKit/Utf8.h"

#include <fmt/format.h>
#include <iterator>

namespace quarn::cli {
namespace {

/// Whether every terminal gives this glyph the width that we do, so that the cursor is where we think it is.
bool isCertain(const Cell& cell) {
    const char32_t c = cell.glyph;
    return cell.mark == 0 && cell.cells == 1 && (c < 0x7F || (c >= 0x2500 && c <= 0x25FF));
}

} // namespace

const std::string& Painter::paint(const Canvas& frame) {
    bytes_.clear();
    const bool whole = !shown_ || shown_->size() != frame.size();
    if (whole) bytes_ += "\x1b[0m\x1b[2J";
    std::optional<Style> style;
    for (int row = 0; row < frame.size().rows; ++row) {
        int cursor = -1; // the column where the terminal's cursor surely is in this row
        for (int column = 0; column < frame.size().columns; ++column) {
            const Cell& cell = frame.at(row, column);
            if (cell.cells == 0 || cell == (whole ? Cell{} : shown_->at(row, column))) continue;
            if (cursor != column) {
                fmt::format_to(std::back_inserter(bytes_), "\x1b[{};{}H", row + 1, column + 1);
            }
            if (style != cell.style) bytes_ += palette_.select(cell.style);
            style = cell.style;
            appendCharacter(bytes_, cell.glyph);
            if (cell.mark != 0) appendCharacter(bytes_, cell.mark);
            cursor = isCertain(cell) ? column + 1 : -1;
        }
    }
    if (style) bytes_ += "\x1b[0m";
    shown_ = frame;
    return bytes_;
}

} // namespace quarn::cli
