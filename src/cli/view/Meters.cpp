#include "cli/view/Meters.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarn::cli {
namespace {

constexpr int labelWidth = 9;
constexpr int figureWidth = 8;
constexpr int factGap = 3;
constexpr int factsWidth = 37; // two blanks and two rates with their names
constexpr int leastBar = 8;
constexpr int longestGraph = 44;

/// The smallest of 1, 2, 5, 10, … that is not below `value`.
double nextStep(double value) {
    const double decade = std::pow(10, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (step * decade >= value) return step * decade;
    }
    return 10 * decade;
}

/// Facts come first: the graph takes what they leave, up to a length beyond which it says no more.
int graphWidth(int width) {
    const int rest = width - labelWidth - figureWidth;
    return std::max(std::min(rest, std::clamp(rest - factsWidth, leastBar, longestGraph)), 0);
}

void drawFacts(Canvas& canvas, Strip strip, const std::vector<Fact>& facts) {
    for (const Fact& fact : facts) {
        if (strip.begin + canvas.width(fact.text) > strip.end) continue;
        strip.begin = canvas.put(strip.row, strip.begin, fact.text, fact.style, strip.end) + factGap;
    }
}

} // namespace

void drawBar(Canvas& canvas, Strip strip, std::span<const BarPart> parts) {
    const int halves = 2 * strip.width();
    int filled = 0;
    double sum = 0;
    for (const BarPart& part : parts) {
        if (!(part.share > 0)) continue;
        sum += part.share;
        const int wanted = static_cast<int>(std::lround(std::min(sum, 1.0) * halves));
        const int until = std::clamp(wanted, std::min(filled + 1, halves), halves);
        // A cell that two parts share belongs to the earlier one, in full.
        for (int cell = (filled + 1) / 2; 2 * cell < until; ++cell) {
            const bool half = 2 * cell + 1 == until;
            canvas.put(strip.row, strip.begin + cell, half ? "╸" : "━", {part.ink});
        }
        if (filled % 2 == 1 && until > filled) {
            canvas.put(strip.row, strip.begin + filled / 2, "━",
                       canvas.at(strip.row, strip.begin + filled / 2).style);
        }
        filled = until;
    }
    for (int cell = (filled + 1) / 2; cell < strip.width(); ++cell) {
        canvas.put(strip.row, strip.begin + cell, "─", {Ink::line});
    }
}

std::string_view blockFor(double share) {
    constexpr std::array<std::string_view, 8> blocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    const double clamped = share > 0 ? std::min(share, 1.0) : 0;
    return blocks[static_cast<size_t>(std::lround(clamped * 7))];
}

void drawTrend(Canvas& canvas, Strip strip, const Trend& trend, double leastScale, Ink ink) {
    const auto& values = trend.values();
    const auto width = static_cast<size_t>(std::max(strip.width(), 0));
    const size_t shown = std::min(values.size(), width);
    const auto first = values.end() - static_cast<ptrdiff_t>(shown);
    const double largest = shown == 0 ? 0 : *std::max_element(first, values.end());
    const double scale = nextStep(std::max(largest, leastScale));
    for (size_t i = 0; i < width; ++i) {
        const int column = strip.begin + static_cast<int>(i);
        if (i < width - shown) {
            canvas.put(strip.row, column, "▁", {Ink::line});
        } else {
            const double value = *(first + static_cast<ptrdiff_t>(i - (width - shown)));
            canvas.put(strip.row, column, blockFor(value / scale), {value > 0 ? ink : Ink::line});
        }
    }
}

void drawMeter(Canvas& canvas, Strip strip, const Meter& meter) {
    canvas.put(strip.row, strip.begin, meter.label, {meter.ink, Weight::bold}, strip.end);
    const int graph = graphWidth(strip.width());
    Strip place{strip.row, strip.begin + labelWidth, strip.begin + labelWidth + graph};
    const int facts = place.end + figureWidth + 2;
    if (!meter.parts.empty()) {
        if (graph >= leastBar) drawBar(canvas, place, meter.parts);
        canvas.putRight(strip.row, place.begin, std::min(place.end + figureWidth, strip.end), meter.figure);
    } else if (meter.trend != nullptr) {
        // A rate has no share to print: its graph takes the place of the figure as well, where facts fit.
        place.end = strip.end - facts > leastBar ? place.end + figureWidth : place.begin;
        drawTrend(canvas, place, *meter.trend, meter.leastScale, meter.ink);
    } else {
        canvas.put(strip.row, place.begin, meter.figure, {Ink::dim}, strip.end);
    }
    const bool narrow = strip.end - facts <= leastBar && meter.parts.empty();
    drawFacts(canvas, {strip.row, narrow ? place.begin : facts, strip.end}, meter.facts);
}

} // namespace quarn::cli
