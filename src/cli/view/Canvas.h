#pragma once

#include "cli/TerminalText.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace quarn::cli {

/// The size of a terminal in cells.
struct Size {
    int columns = 80;
    int rows = 24;
    bool operator==(const Size&) const = default;
};

/// What a cell is about; the palette gives it a colour. One hue for each kind of reading.
enum class Ink : uint8_t {
    text,
    dim,
    line, ///< the empty part of a bar
    cpu,
    cpuSystem,
    memory,
    gpu,
    temperature,
    network,
    disk,
    power,
    warning,
    critical,
};
inline constexpr size_t inkCount = static_cast<size_t>(Ink::critical) + 1;

enum class Weight : uint8_t { normal, bold };

struct Style {
    Ink ink = Ink::text;
    Weight weight = Weight::normal;
    bool operator==(const Style&) const = default;
};

/// One cell of a frame.
struct Cell {
    char32_t glyph = U' ';
    char32_t mark = 0; ///< a combining mark on the glyph
    Style style;
    uint8_t cells = 1; ///< 2: the next cell is covered; 0: covered by the cell before
    bool operator==(const Cell&) const = default;
};

/// A frame under construction: a grid of cells as large as the terminal. Text is made safe when it is put,
/// and what lies outside is clipped, so no frame can be wider or higher than its terminal.
class Canvas {
public:
    Canvas(Size size, Charset charset);

    const Size& size() const { return size_; }
    const Cell& at(int row, int column) const { return cells_[index(row, column)]; }

    /// Puts `text` from `column` on, up to `end` (exclusive); what does not fit is cut with "…". The column
    /// after it.
    int put(int row, int column, std::string_view text, Style style = {},
            int end = std::numeric_limits<int>::max());
    /// Puts `text` so that it ends before `end`; nothing when it would begin before `begin`.
    void putRight(int row, int begin, int end, std::string_view text, Style style = {});
    /// The number of cells that `text` would take.
    int width(std::string_view text) const { return cellsOf(text, charset_); }

    /// One row as text, without blanks at its end.
    std::string rowText(int row) const;

private:
    size_t index(int row, int column) const {
        return static_cast<size_t>(row) * static_cast<size_t>(size_.columns) + static_cast<size_t>(column);
    }
    void set(int row, int column, const Glyph& glyph, Style style);
    void uncover(int row, int column);

    Size size_;
    Charset charset_;
    std::vector<Cell> cells_;
};

} // namespace quarn::cli
