#include "ui/modules/ChartText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

namespace quarn {

std::string agoText(double seconds) {
    if (!(seconds >= 0.5)) return "now";
    const auto whole = static_cast<int64_t>(std::lround(seconds));
    if (whole < 120) return fmt::format("−{} s", whole);
    if (whole % 60 == 0) return fmt::format("−{} min", whole / 60);
    return fmt::format("−{} min {} s", whole / 60, whole % 60);
}

std::string scaleMark(std::string_view reading) {
    const size_t end = std::min(reading.find_first_not_of("0123456789."), reading.size());
    const std::string_view figure = reading.substr(0, end);
    if (figure.find('.') == std::string_view::npos) return std::string(reading);
    size_t kept = figure.find_last_not_of('0') + 1;
    if (figure[kept - 1] == '.') --kept;
    return std::string(figure.substr(0, kept)).append(reading.substr(end));
}

} // namespace quarn
