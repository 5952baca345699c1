#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Times of the user's calendar below and within charts. Times are Unix seconds; the zone is the system's,
/// and days of 23 or 25 hours are no exception. Any thread.
namespace quarn {

/// A mark of a time axis.
struct CalendarTick {
    int64_t time = 0;
    std::string text; ///< "15:00", "Tue 14", "14 Oct", "Oct", "2026"

    bool operator==(const CalendarTick&) const = default;
};

/// Marks between `from` and `to` (inclusive) at full hours, midnights, Mondays or first days of months: the
/// finest of these of which there are at most `most`.
std::vector<CalendarTick> calendarTicks(int64_t from, int64_t to, size_t most);

/// A period of one minute, some hours, a day, or several: "Tue 14 Oct, 15:04", "Tue 14 Oct, 15:00 – 16:00",
/// "Tue 14 Oct 2025", "13 Oct – 19 Oct 2025". `to` is exclusive.
std::string periodText(int64_t from, int64_t to);
/// "15:04".
std::string clockText(int64_t time);
/// "14 Oct 2025".
std::string dateText(int64_t time);

} // namespace quarn
