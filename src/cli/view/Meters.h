#pragma once

#include "cli/view/Canvas.h"
#include "cli/view/Trends.h"

#include <span>
#include <string>
#include <vector>

namespace quarn::cli {

/// A part of one row of a canvas; `end` is exclusive.
struct Strip {
    int row = 0;
    int begin = 0;
    int end = 0;
    int width() const { return end - begin; }
};

/// A part of a bar, as a share of its whole length.
struct BarPart {
    double share = 0; ///< 0 to 1
    Ink ink = Ink::text;
};

/// A horizontal bar of half-cell steps; the parts follow each other from the left, the rest is a faint line.
/// A share above 0 shows at least half a cell.
void drawBar(Canvas& canvas, Strip strip, std::span<const BarPart> parts);

/// One column for each value, the newest at the right, on a scale that ends at the next step of 1, 2, 5 above
/// the largest value shown, `leastScale` at least.
void drawTrend(Canvas& canvas, Strip strip, const Trend& trend, double leastScale, Ink ink);

/// A block whose height stands for `share`, 0 to 1.
std::string_view blockFor(double share);

/// One more fact beside a meter.
struct Fact {
    std::string text;
    Style style{Ink::dim};
};

/// One row of the overview: a label, a bar or mini graph, a figure and further facts, as many as fit.
struct Meter {
    std::string_view label;
    Ink ink = Ink::text;
    std::vector<BarPart> parts{}; ///< of the bar; without parts there is a mini graph
    const Trend* trend = nullptr; ///< of the mini graph; without it its place stays empty
    double leastScale = 1;
    std::string figure{}; ///< beside a bar
    std::vector<Fact> facts{};
};
void drawMeter(Canvas& canvas, Strip strip, const Meter& meter);

} // namespace quarn::cli
