#pragma once

#include <cmath>

namespace quarn {

/// The top of a graph's scale: the first of 1, 2, 5, 10, 20, … times a power of ten that `largest` does not
/// exceed; 1 for nothing at all.
inline double niceTop(double largest) {
    if (!(largest > 0) || !std::isfinite(largest)) return 1;
    const double power = std::pow(10, std::floor(std::log10(largest)));
    for (const double step : {1.0, 2.0, 5.0})
        if (largest <= step * power) return step * power;
    return 10 * power;
}

/// Into how many steps a scale up to such a top falls so that their marks are short figures.
inline int scaleSteps(double niceTop) {
    const double leading = niceTop / std::pow(10, std::floor(std::log10(niceTop) + 1e-9));
    return std::lround(leading) == 2 ? 4 : 5;
}

} // namespace quarn
