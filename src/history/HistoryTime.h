#pragma once

#include "monitor/Snapshot.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace quarn {

inline constexpr int64_t minuteSeconds = 60;
inline constexpr int64_t hourSeconds = 3600;

/// Whole Unix seconds, rounded down.
inline int64_t unixSeconds(WallTime time) {
    return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

inline WallTime wallTime(int64_t unixSeconds) { return WallTime(std::chrono::seconds(unixSeconds)); }

inline double secondsBetween(WallTime from, WallTime to) {
    return std::chrono::duration<double>(to - from).count();
}

/// What of the time between two samples is taken as observed. nullopt for a hole: the machine slept, the
/// program stood still, or the clock was set back.
inline std::optional<double> observedSeconds(WallTime from, WallTime to) {
    constexpr double longest = 60;
    const double seconds = secondsBetween(from, to);
    return seconds > 0 && seconds <= longest ? std::optional(seconds) : std::nullopt;
}

inline double epochSeconds(WallTime time) { return secondsBetween({}, time); }

/// `time` rounded down to a multiple of `step`, also before 1970.
inline int64_t roundedDown(int64_t time, int64_t step) {
    const int64_t remainder = time % step;
    return time - (remainder < 0 ? remainder + step : remainder);
}

inline int64_t roundedUp(int64_t time, int64_t step) { return roundedDown(time + step - 1, step); }

} // namespace quarn
