#include "cli/view/CoreGrid.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

namespace quarn::cli {
namespace {

constexpr int shareWidth = 4; // a blank and "100"
constexpr int cellGap = 3;
constexpr int comfortableBar = 12;
constexpr int shortestBar = 4;
constexpr int groupSize = 10; // blocks that stand together

int digitsOf(size_t number) { return static_cast<int>(std::to_string(number).size()); }

int ceilDivide(int value, int divisor) { return (value + divisor - 1) / divisor; }

/// How many blocks fit into `width` in groups with a blank between them.
int blocksIn(int width) {
    const int groups = (width + 1) / (groupSize + 1);
    const int rest = width - groups * (groupSize + 1);
    return std::max(groups * groupSize + std::max(rest, 0), 1);
}

} // namespace

CoreGrid::CoreGrid(size_t cores, int width, int rows)
    : cores_(cores), labelWidth_(digitsOf(cores == 0 ? 0 : cores - 1) + 1) {
    if (cores == 0 || rows <= 0 || width < labelWidth_ + groupSize) return;
    const int count = static_cast<int>(std::min<size_t>(cores, 1 << 20));
    for (const int bar : {comfortableBar, shortestBar}) {
        const int least = labelWidth_ + bar + shareWidth;
        const int most = (width + cellGap) / (least + cellGap);
        if (most < 1) continue;
        rows_ = ceilDivide(count, most);
        if (rows_ > rows) continue;
        columns_ = ceilDivide(count, rows_); // rows of equal length
        cellWidth_ = (width + cellGap) / columns_ - cellGap;
        return;
    }
    columns_ = blocksIn(width - labelWidth_);
    coresPerBlock_ = static_cast<size_t>(ceilDivide(count, columns_ * rows));
    rows_ = ceilDivide(ceilDivide(count, static_cast<int>(coresPerBlock_)), columns_);
}

void CoreGrid::draw(Canvas& canvas, Strip top, std::span<const double> shares,
                    std::span<const double> system) const {
    if (rows_ == 0) return;
    if (coresPerBlock_ == 0) {
        drawBars(canvas, top, shares, system);
    } else {
        drawBlocks(canvas, top, shares);
    }
}

void CoreGrid::drawBars(Canvas& canvas, Strip top, std::span<const double> shares,
                        std::span<const double> system) const {
    for (size_t core = 0; core < cores_; ++core) {
        const int row = top.row + static_cast<int>(core) / columns_;
        const int begin = top.begin + static_cast<int>(core) % columns_ * (cellWidth_ + cellGap);
        const int end = begin + cellWidth_;
        const int bar = begin + labelWidth_;
        canvas.putRight(row, begin, bar - 1, std::to_string(core), {Ink::dim});
        if (core >= shares.size()) {
            canvas.putRight(row, bar, end, "—", {Ink::dim});
            continue;
        }
        const double kernel = core < system.size() ? std::min(system[core], shares[core]) : 0;
        const BarPart parts[] = {{(shares[core] - kernel) / 100, Ink::cpu}, {kernel / 100, Ink::cpuSystem}};
        drawBar(canvas, {row, bar, end - shareWidth}, parts);
        canvas.putRight(row, end - shareWidth, end, fmt::format("{:.0f}", shares[core]));
    }
}

void CoreGrid::drawBlocks(Canvas& canvas, Strip top, std::span<const double> shares) const {
    const size_t perRow = static_cast<size_t>(columns_) * coresPerBlock_;
    for (size_t first = 0, block = 0; first < cores_; first += coresPerBlock_, ++block) {
        const int row = top.row + static_cast<int>(block) / columns_;
        const int place = static_cast<int>(block) % columns_;
        if (first % perRow == 0) {
            canvas.putRight(row, top.begin, top.begin + labelWidth_ - 1, std::to_string(first), {Ink::dim});
        }
        const size_t end = std::min(first + coresPerBlock_, shares.size());
        const double mean = first < end ? std::accumulate(shares.begin() + static_cast<ptrdiff_t>(first),
                                                          shares.begin() + static_cast<ptrdiff_t>(end), 0.0) /
                                              static_cast<double>(end - first)
                                        : 0;
        canvas.put(row, top.begin + labelWidth_ + place + place / groupSize, blockFor(mean / 100),
                   {mean >= 0.5 ? Ink::cpu : Ink::line});
    }
}

} // namespace quarn::cli
