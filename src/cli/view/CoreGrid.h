#pragma once

#include "cli/view/Meters.h"

#include <span>

namespace quarn::cli {

/// How the logical CPUs are laid out: each with bar and figure while there is room, then one block for each,
/// then one block for several neighbours, whose mean it shows.
class CoreGrid {
public:
    /// A layout for `cores` CPUs of at most `rows` rows, each `width` cells wide.
    CoreGrid(size_t cores, int width, int rows);

    int rows() const { return rows_; }
    size_t coresPerBlock() const { return coresPerBlock_; } ///< 0 where each has a bar

    /// Draws from `top` down; `shares` are percent, `system` the part of the kernel's work in them.
    void draw(Canvas& canvas, Strip top, std::span<const double> shares,
              std::span<const double> system) const;

private:
    void drawBars(Canvas& canvas, Strip top, std::span<const double> shares,
                  std::span<const double> system) const;
    void drawBlocks(Canvas& canvas, Strip top, std::span<const double> shares) const;

    size_t cores_;
    int rows_ = 0;
    int columns_ = 0;   ///< cells with a bar in a row, or blocks in a row
    int cellWidth_ = 0; ///< of one with a bar
    int labelWidth_ = 0;
    size_t coresPerBlock_ = 0;
};

} // namespace quarn::cli
