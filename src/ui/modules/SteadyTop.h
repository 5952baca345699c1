#pragma once

#include <optional>

namespace quarn {

/// The top of a graph's scale as time goes on: grows at once with what it must hold, and shrinks only after a
/// lower top would have done for ten seconds, so that the scale does not jump. Tops are those of `niceTop`.
class SteadyTop {
public:
    static constexpr double patience = 10; ///< seconds

    /// The top for the values up to `largest` that are shown at `now` (steady seconds). Calls come in the
    /// order of time.
    double follow(double largest, double now);
    /// Forgets what was shown: the next top is that of its values alone.
    void reset() { *this = {}; }

private:
    double top_ = 0;
    std::optional<double> lowerSince_;
    double lowerTop_ = 0; ///< what would have done since then
};

} // namespace quarn
