#include "ui/modules/CoreLayout.h"

#include <algorithm>

namespace quarn {

namespace {

constexpr int leastBar = 132; // with number and figure
constexpr int mostLabelledRows = 12;
constexpr int rowHeight = 20;
constexpr int leastColumn = 10;
constexpr int compactHeight = 240; // what all rows together are made to take
constexpr int octet = 8;           // rows of compact cells hold whole multiples

int ceilDivide(int value, int divisor) { return (value + divisor - 1) / divisor; }

} // namespace

CoreLayout coreLayout(size_t cores, int width) {
    const int count = static_cast<int>(std::min<size_t>(cores, 1 << 16));
    if (count == 0) return {};
    CoreLayout layout;
    layout.gap = 16;
    const int fit = std::max(1, (width + layout.gap) / (leastBar + layout.gap));
    layout.rows = ceilDivide(count, fit);
    layout.columns = ceilDivide(count, layout.rows);
    layout.cellHeight = rowHeight;
    if (layout.rows > mostLabelledRows) {
        layout.labelled = false;
        layout.gap = 2;
        layout.labelWidth = 40;
        const int most = std::max(1, (width - layout.labelWidth + layout.gap) / (leastColumn + layout.gap));
        layout.rows = ceilDivide(count, most < octet ? most : most / octet * octet);
        const int even = ceilDivide(count, layout.rows); // rows of equal length
        layout.columns = most < octet ? even : ceilDivide(even, octet) * octet;
        layout.cellHeight = std::clamp(compactHeight / layout.rows, 14, 40);
    }
    const int room = std::max(width - layout.labelWidth, 1) + layout.gap;
    layout.cellWidth = std::max(1.0, static_cast<double>(room) / layout.columns - layout.gap);
    return layout;
}

} // namespace quarn
