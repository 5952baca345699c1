#include "cli/HistoryPlot.h"

#include "ui/modules/CalendarText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace quarn::cli {

namespace {

constexpr int columnsOfATick = 9;

/// The part of each column that was recorded, and what the line adds up to there.
struct Column {
    double seconds = 0;
    double sum = 0;
    double mean() const { return seconds > 0 ? sum / seconds : std::nan(""); }
};

std::vector<Column> columnsOf(const HistoryPlot& plot, const HistorySeries& series, size_t line, int count) {
    std::vector<Column> columns(static_cast<size_t>(count));
    const double width = static_cast<double>(plot.to - plot.from) / count;
    for (size_t i = 0; i < series.periods.size(); ++i) {
        const double value = series.lines[line][i];
        if (std::isnan(value)) continue;
        const double begin = static_cast<double>(std::max(series.periods[i].from, plot.from) - plot.from);
        const double end = static_cast<double>(std::min(series.periods[i].to, plot.to) - plot.from);
        const auto last =
            std::min(columns.size(), static_cast<size_t>(std::ceil(std::max(end, 0.0) / width)));
        for (auto at = static_cast<size_t>(std::max(begin, 0.0) / width); at < last; ++at) {
            const double left = static_cast<double>(at) * width;
            const double shared = std::min(end, left + width) - std::max(begin, left);
            if (shared <= 0) continue;
            columns[at].seconds += shared;
            columns[at].sum += shared * value;
        }
    }
    return columns;
}

/// What stands in row `row` from below of a column `height` eighths high.
std::string_view cell(int height, int row, Charset charset) {
    static constexpr std::array<std::string_view, 9> blocks{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    const int eighths = std::clamp(height - 8 * row, 0, 8);
    if (charset == Charset::utf8) return blocks[static_cast<size_t>(eighths)];
    return eighths > 3 || (row == 0 && eighths > 0) ? "#" : " ";
}

std::string axis(const HistoryPlot& plot, int count) {
    std::string line(static_cast<size_t>(count), ' ');
    size_t free = 0;
    for (const auto& tick :
         calendarTicks(plot.from, plot.to, static_cast<size_t>(std::max(count / columnsOfATick, 2)))) {
        const double place =
            static_cast<double>(tick.time - plot.from) / static_cast<double>(plot.to - plot.from);
        const auto at = static_cast<size_t>(place * count);
        if (at < free || at + tick.text.size() > line.size()) continue;
        line.replace(at, tick.text.size(), tick.text);
        free = at + tick.text.size() + 2;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string padded(std::string_view text, int width, Charset charset) {
    const std::string safe = fitted(text, width, charset);
    return std::string(static_cast<size_t>(width - cellsOf(safe, Charset::utf8)), ' ') + safe;
}

} // namespace

std::string plotText(const HistoryPlot& plot, const HistorySeries& series, size_t line) {
    constexpr int scaleWidth = 10;
    const bool utf8 = plot.charset == Charset::utf8;
    const int count = std::max(plot.columns - scaleWidth - 1, 10);
    const auto columns = columnsOf(plot, series, line, count);
    double greatest = 0;
    for (const auto& column : columns)
        if (column.seconds > 0) greatest = std::max(greatest, column.mean());
    const double top = plot.top(greatest);

    std::vector<int> heights;
    for (const auto& column : columns) {
        const double share = column.seconds > 0 ? column.mean() / top : 0;
        heights.push_back(share > 0 ? std::max(static_cast<int>(std::lround(share * 8 * plot.rows)), 1) : 0);
    }
    std::string text;
    for (int row = plot.rows - 1; row >= 0; --row) {
        const std::string mark = row == plot.rows - 1 ? plot.mark(top)
                                 : row == 0           ? plot.mark(0)
                                                      : std::string();
        std::string cells;
        for (const int height : heights) cells += cell(height, row, plot.charset);
        cells.erase(cells.find_last_not_of(' ') + 1);
        text += padded(mark, scaleWidth - 1, plot.charset) + " ";
        text += (utf8 ? "│" : "|") + cells + "\n";
    }
    text += std::string(scaleWidth, ' ') + (utf8 ? "└" : "+");
    std::string base;
    for (const auto& column : columns) base += column.seconds <= 0 ? " " : utf8 ? "─" : "-";
    base.erase(base.find_last_not_of(' ') + 1);
    return text + base + "\n" + std::string(scaleWidth + 1, ' ') + axis(plot, count) + "\n";
}

} // namespace quarn::cli
