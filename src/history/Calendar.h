#pragma once

#include <cstdint>

namespace quarn {

/// The days of the user's calendar, as spans of Unix seconds. A day lasts 23 or 25 hours where summer time
/// begins or ends, and need not begin at a full hour of universal time.
///
/// Follows the system's time zone, also when that changes. Any thread.
class Calendar {
public:
    /// The first second of the local day that contains `time`.
    int64_t startOfDay(int64_t time) const;
    /// The first second of the day after, and of the day before, the one that contains `time`.
    int64_t nextDay(int64_t time) const;
    int64_t previousDay(int64_t time) const;
};

} // namespace quarn
