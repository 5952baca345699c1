#include "history/Calendar.h"

#include <time.h>
#include <tuple>

namespace quarn {

namespace {

constexpr int64_t hour = 3600;

std::tuple<int, int, int> localDate(int64_t time) {
    const auto seconds = static_cast<time_t>(time);
    tm local{};
    ::localtime_r(&seconds, &local);
    return {local.tm_year, local.tm_mon, local.tm_mday};
}

} // namespace

int64_t Calendar::startOfDay(int64_t time) const {
    ::tzset(); // looks whether the user has moved to another zone
    const auto date = localDate(time);
    // Searching needs no assumption about the clock change that the day may hold, not even that the day has
    // a midnight: in some zones summer time begins at 0:00, and the day at 1:00.
    int64_t before = time - 27 * hour, within = time;
    while (within - before > 1) {
        const int64_t middle = before + (within - before) / 2;
        (localDate(middle) == date ? within : before) = middle;
    }
    return within;
}

int64_t Calendar::nextDay(int64_t time) const { return startOfDay(startOfDay(time) + 36 * hour); }
int64_t Calendar::previousDay(int64_t time) const { return startOfDay(startOfDay(time) - 12 * hour); }

} // namespace quarn
