#include "cli/view/Palette.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>

namespace quarn::cli {
namespace {

struct Colour {
    int red;
    int green;
    int blue;
};
struct InkColours {
    Colour dark;  ///< on a dark background
    Colour light; ///< on a light one
    int sixteen;  ///< SGR parameter of the nearest of the sixteen
};

// In the order of Ink from `dim` on; `text` is the terminal's own.
constexpr std::array<InkColours, inkCount - 1> colours{{
    {{0x93, 0x9C, 0xA8}, {0x66, 0x70, 0x80}, 90}, // dim
    {{0x3A, 0x41, 0x4A}, {0xC9, 0xCF, 0xD6}, 90}, // line
    {{0x3D, 0xA5, 0xE0}, {0x00, 0x72, 0xB2}, 94}, // cpu
    {{0x9B, 0xD3, 0xF2}, {0x5A, 0xA9, 0xD6}, 36}, // cpuSystem
    {{0xE0, 0x9C, 0xC2}, {0xB0, 0x55, 0x88}, 35}, // memory
    {{0x2B, 0xC4, 0x9A}, {0x00, 0x8A, 0x65}, 32}, // gpu
    {{0xFF, 0x8B, 0x3D}, {0xC2, 0x55, 0x00}, 31}, // temperature
    {{0x7A, 0xC9, 0xF2}, {0x1F, 0x86, 0xC0}, 96}, // network
    {{0xF0, 0xB4, 0x32}, {0x9E, 0x6D, 0x00}, 33}, // disk
    {{0xD4, 0xBC, 0x3A}, {0x80, 0x6F, 0x00}, 93}, // power
    {{0xFF, 0xC1, 0x4D}, {0x9A, 0x62, 0x00}, 93}, // warning
    {{0xFF, 0x6B, 0x6B}, {0xC6, 0x28, 0x28}, 91}, // critical
}};

/// The nearest colour of the 6 × 6 × 6 cube and the grey ramp of 256-colour terminals.
int indexedColour(const Colour& colour) {
    constexpr std::array levels{0, 95, 135, 175, 215, 255};
    const auto nearest = [&](int value) {
        const auto* best = std::min_element(levels.begin(), levels.end(), [&](int a, int b) {
            return std::abs(a - value) < std::abs(b - value);
        });
        return static_cast<int>(best - levels.begin());
    };
    const auto distance = [&](int red, int green, int blue) {
        const int r = red - colour.red, g = green - colour.green, b = blue - colour.blue;
        return r * r + g * g + b * b;
    };
    const int red = nearest(colour.red), green = nearest(colour.green), blue = nearest(colour.blue);
    const int step = std::clamp(((colour.red + colour.green + colour.blue) / 3 - 3) / 10, 0, 23);
    const int grey = 8 + 10 * step;
    const auto level = [&](int i) { return levels[static_cast<size_t>(i)]; };
    if (distance(grey, grey, grey) < distance(level(red), level(green), level(blue))) return 232 + step;
    return 16 + 36 * red + 6 * green + blue;
}

std::string code(const InkColours& ink, ColourDepth depth, Background background) {
    const Colour& colour = background == Background::dark ? ink.dark : ink.light;
    switch (depth) {
    case ColourDepth::none: return {};
    case ColourDepth::sixteen: return std::to_string(ink.sixteen);
    case ColourDepth::indexed: return fmt::format("38;5;{}", indexedColour(colour));
    case ColourDepth::trueColour: return fmt::format("38;2;{};{};{}", colour.red, colour.green, colour.blue);
    }
    return {};
}

} // namespace

Palette::Palette(ColourDepth depth, Background background) {
    for (size_t i = 0; i < colours.size(); ++i) codes_[i + 1] = code(colours[i], depth, background);
}

std::string Palette::select(Style style) const {
    std::string result = "\x1b[0";
    if (style.weight == Weight::bold) result += ";1";
    const std::string& colour = codes_[static_cast<size_t>(style.ink)];
    if (!colour.empty()) result += ';' + colour;
    return result + 'm';
}

ColourDepth colourDepth(const char* (*variable)(const char*)) {
    const auto text = [&](const char* name) {
        const char* value = variable(name);
        return std::string_view(value == nullptr ? "" : value);
    };
    const std::string_view term = text("TERM");
    if (!text("NO_COLOR").empty() || term.empty() || term == "dumb") return ColourDepth::none;
    const std::string_view more = text("COLORTERM");
    if (more == "truecolor" || more == "24bit" || term.ends_with("-direct")) return ColourDepth::trueColour;
    if (!more.empty() || term.find("256color") != std::string_view::npos) return ColourDepth::indexed;
    return ColourDepth::sixteen;
}

} // namespace quarn::cli
