#pragma once

#include "cli/TerminalText.h"
#include "ui/modules/HistorySeries.h"

#include <functional>
#include <string>

namespace quarn::cli {

/// Where and how a line of the history is drawn.
struct HistoryPlot {
    int64_t from = 0; ///< Unix seconds
    int64_t to = 0;
    int columns = 80; ///< of the terminal
    int rows = 5;     ///< of the drawing
    Charset charset = Charset::utf8;
    std::function<double(double)> top = {};       ///< of the scale, for its greatest value
    std::function<std::string(double)> mark = {}; ///< writes a value of the scale
};

/// Columns whose heights are the means of the time they stand for, with a scale on the left and times below.
/// The base line has holes where nothing was recorded. A column of a value above 0 is never empty.
std::string plotText(const HistoryPlot& plot, const HistorySeries& series, size_t line);

} // namespace quarn::cli
