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

} // namespace quarn
