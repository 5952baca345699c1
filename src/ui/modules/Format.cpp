#include "ui/modules/Format.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <span>

namespace quarn::format {
namespace {

constexpr std::array<std::string_view, 7> binaryUnits{"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
constexpr std::array<std::string_view, 7> decimalUnits{"B", "kB", "MB", "GB", "TB", "PB", "EB"};

// The largest value that still rounds to three digits before the point.
constexpr double fullThreeDigits = 999.5;

bool sensible(double value) { return std::isfinite(value) && value >= 0; }

std::string scaled(double value, double step, std::span<const std::string_view> units,
                   std::string_view suffix) {
    if (!sensible(value)) return std::string(unknown);
    size_t unit = 0;
    while (value >= fullThreeDigits && unit + 1 < units.size()) {
        value /= step;
        ++unit;
    }
    if (unit == 0) return fmt::format("{:.0f} {}{}", value, units[0], suffix);
    return fmt::format("{} {}{}", threeDigits(value), units[unit], suffix);
}

struct Span { // one form of a duration: from `least` seconds on, `major` and `minor` units of so many seconds
    double least;
    int64_t major;
    int64_t minor;
    std::string_view words;
    std::string_view letters;
};
constexpr int64_t minute = 60;
constexpr int64_t hour = 60 * minute;
constexpr int64_t day = 24 * hour;
constexpr std::array<Span, 3> spans{{
    {static_cast<double>(day), day, hour, "{} d {} h", "{}d {}h"},
    {static_cast<double>(hour), hour, minute, "{} h {} min", "{}h {}m"},
    {static_cast<double>(minute), minute, 1, "{} min {} s", "{}m {}s"},
}};

std::string durationIn(double seconds, std::string_view Span::*form, std::string_view secondsForm) {
    if (!sensible(seconds) || seconds > 1e12) return std::string(unknown);
    if (seconds < 59.95) return fmt::format(fmt::runtime(secondsForm), threeDigits(seconds));
    const auto whole = static_cast<int64_t>(std::round(seconds));
    for (const Span& span : spans) {
        if (static_cast<double>(whole) < span.least) continue;
        return fmt::format(fmt::runtime(span.*form), whole / span.major, whole % span.major / span.minor);
    }
    return {};
}

} // namespace

std::string orUnknown(std::string_view text) { return std::string(text.empty() ? unknown : text); }

std::string threeDigits(double value) {
    if (!sensible(value)) return std::string(unknown);
    if (value == 0) return "0";
    const int decimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return fmt::format("{:.{}f}", value, decimals);
}

std::string percentFigure(double percent) {
    if (!sensible(percent)) return std::string(unknown);
    return fmt::format("{:.{}f}", percent, percent < 99.95 ? 1 : 0);
}

std::string percent(double percent) {
    if (!sensible(percent)) return std::string(unknown);
    return percentFigure(percent) + " %";
}

std::string memory(uint64_t bytes) { return scaled(static_cast<double>(bytes), 1024, binaryUnits, ""); }

std::string diskSize(uint64_t bytes) { return scaled(static_cast<double>(bytes), 1000, decimalUnits, ""); }

std::string rate(double bytesPerSecond) { return scaled(bytesPerSecond, 1000, decimalUnits, "/s"); }

std::string count(double count) {
    if (!sensible(count)) return std::string(unknown);
    constexpr std::array<std::string_view, 4> steps{"", " k", " M", " G"};
    size_t step = 0;
    for (; count >= fullThreeDigits && step + 1 < steps.size(); ++step) count /= 1000;
    return fmt::format("{}{}", step == 0 ? fmt::format("{:.0f}", count) : threeDigits(count), steps[step]);
}

std::string perSecond(double count) {
    return sensible(count) ? format::count(count) + "/s" : std::string(unknown);
}

std::string watts(double watts) {
    if (!sensible(watts)) return std::string(unknown);
    return threeDigits(watts) + " W";
}

std::string energy(double joules) {
    if (!sensible(joules)) return std::string(unknown);
    const double wattHours = joules / static_cast<double>(hour);
    return wattHours < fullThreeDigits ? threeDigits(wattHours) + " Wh"
                                       : threeDigits(wattHours / 1000) + " kWh";
}

std::string duration(double seconds) { return durationIn(seconds, &Span::words, "{} s"); }

std::string shortDuration(double seconds) { return durationIn(seconds, &Span::letters, "{}s"); }

} // namespace quarn::format
