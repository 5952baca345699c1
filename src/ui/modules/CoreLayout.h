#pragma once

#include <cstddef>

namespace quarn {

/// How the logical CPUs are laid out on a surface: each with its number, bar and figure while there is room,
/// otherwise as small columns in rows of a round number of them.
struct CoreLayout {
    bool labelled = true; ///< number and figure beside each bar; otherwise the first number beside each row
    int columns = 0;
    int rows = 0;
    int labelWidth = 0;   ///< of a row's label, when the cells have none
    double cellWidth = 0; ///< without the gap to the next cell
    int cellHeight = 0;
    int gap = 0; ///< across, and down between compact cells

    double x(size_t core) const {
        return labelWidth + static_cast<double>(core % static_cast<size_t>(columns)) * (cellWidth + gap);
    }
    int y(size_t core) const {
        return static_cast<int>(core / static_cast<size_t>(columns)) * (cellHeight + gapDown());
    }
    int gapDown() const { return labelled ? 0 : gap; }
    int height() const { return rows == 0 ? 0 : rows * (cellHeight + gapDown()) - gapDown(); }
};

/// For `cores` on a surface `width` pixels wide. Any number of them fits; the surface is as high as it takes.
CoreLayout coreLayout(size_t cores, int width);

} // namespace quarn
