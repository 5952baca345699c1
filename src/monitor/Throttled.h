#pragma once

#include <limits>
#include <utility>

namespace quarn {

/// Seconds on a scale that only goes forward and stands still while the machine sleeps.
double steadySeconds();
/// Seconds that the machine has slept since it booted.
double asleepSeconds();

/// A reading that is carried from tick to tick, and when it was taken.
template <class T>
struct Throttled {
    T cached{};
    double computedAt = -std::numeric_limits<double>::infinity(); ///< steady seconds; never at first

    bool isTaken() const { return computedAt > -std::numeric_limits<double>::infinity(); }
    double age(double now) const { return now - computedAt; }
    void store(T value, double now) {
        cached = std::move(value);
        computedAt = now;
    }
    void makeStale() { computedAt = -std::numeric_limits<double>::infinity(); }
};

} // namespace quarn
