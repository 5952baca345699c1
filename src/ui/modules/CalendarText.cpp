#include "ui/modules/CalendarText.h"

#include "history/Calendar.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr int minutesOfDay = 24 * 60;
constexpr int64_t minuteOf = 60;

constexpr std::array weekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

enum class Unit { minute, day, week, month };
struct Step {
    Unit unit;
    int count;
    int64_t seconds; ///< about
};
constexpr int64_t day = 86'400;
constexpr std::array steps{
    Step{Unit::minute, 5, 300},      Step{Unit::minute, 10, 600},      Step{Unit::minute, 15, 900},
    Step{Unit::minute, 30, 1800},    Step{Unit::minute, 60, 3600},     Step{Unit::minute, 120, 7200},
    Step{Unit::minute, 180, 10'800}, Step{Unit::minute, 360, 21'600},  Step{Unit::minute, 720, 43'200},
    Step{Unit::day, 1, day},         Step{Unit::day, 2, 2 * day},      Step{Unit::week, 1, 7 * day},
    Step{Unit::month, 1, 30 * day},  Step{Unit::month, 2, 61 * day},   Step{Unit::month, 3, 91 * day},
    Step{Unit::month, 6, 182 * day}, Step{Unit::month, 12, 365 * day},
};

tm local(int64_t time) {
    const auto seconds = static_cast<time_t>(time);
    tm parts{};
    ::localtime_r(&seconds, &parts);
    return parts;
}

std::string nameOf(int month) { return months[static_cast<size_t>(month)]; }
std::string weekdayOf(const tm& parts) { return weekdays[static_cast<size_t>(parts.tm_wday)]; }
std::string clockOf(const tm& parts) { return fmt::format("{:02}:{:02}", parts.tm_hour, parts.tm_min); }

std::string textOf(int64_t time, const Step& step) {
    const tm parts = local(time);
    switch (step.unit) {
    case Unit::minute:
        if (parts.tm_hour != 0 || parts.tm_min != 0) return clockOf(parts);
        [[fallthrough]];
    case Unit::day: return fmt::format("{} {}", weekdayOf(parts), parts.tm_mday);
    case Unit::week: return fmt::format("{} {}", parts.tm_mday, nameOf(parts.tm_mon));
    case Unit::month: break;
    }
    return parts.tm_mon == 0 ? std::to_string(parts.tm_year + 1900) : nameOf(parts.tm_mon);
}

/// The time of a local clock, in seconds; none where summer time leaves it out.
std::vector<int64_t> clockTimes(int64_t startOfDay, int every) {
    const tm date = local(startOfDay);
    std::vector<int64_t> times;
    for (int minute = 0; minute < minutesOfDay; minute += every) {
        tm wanted = date;
        wanted.tm_hour = minute / 60;
        wanted.tm_min = minute % 60;
        wanted.tm_sec = 0;
        wanted.tm_isdst = -1;
        const int64_t time = ::mktime(&wanted);
        if (wanted.tm_hour * 60 + wanted.tm_min == minute && wanted.tm_mday == date.tm_mday)
            times.push_back(time);
    }
    return times;
}

bool isWanted(int64_t noon, const Step& step) {
    const tm date = local(noon);
    switch (step.unit) {
    case Unit::day: return noon / day % step.count == 0;
    case Unit::week: return date.tm_wday == 1;
    case Unit::month: return date.tm_mday == 1 && date.tm_mon % step.count == 0;
    default: return true;
    }
}

/// All times of a step in a range, in order.
std::vector<int64_t> timesOf(const Step& step, int64_t from, int64_t to) {
    const Calendar calendar;
    std::vector<int64_t> times;
    const auto take = [&](int64_t time) {
        if (time >= from && time <= to) times.push_back(time);
    };
    // Around noon 24 hours on is the next day, whatever the clock did in between.
    for (int64_t noon = calendar.startOfDay(from) + day / 2; noon < to + day; noon += day) {
        if (!isWanted(noon, step)) continue;
        const int64_t start = calendar.startOfDay(noon);
        if (step.unit != Unit::minute)
            take(start);
        else
            for (const int64_t time : clockTimes(start, step.count)) take(time);
    }
    return times;
}

} // namespace

std::vector<CalendarTick> calendarTicks(int64_t from, int64_t to, size_t most) {
    std::vector<CalendarTick> ticks;
    if (to <= from || most == 0) return ticks;
    // Days and months differ in length, so the first guess is one too fine.
    const auto room = (to - from) / static_cast<int64_t>(most) * 4 / 5;
    const auto* step = std::find_if(steps.begin(), steps.end() - 1,
                                    [room](const Step& each) { return each.seconds >= room; });
    auto times = timesOf(*step, from, to);
    while (times.size() > most && step + 1 != steps.end()) times = timesOf(*++step, from, to);
    for (const int64_t time : times) ticks.push_back({time, textOf(time, *step)});
    return ticks;
}

std::string periodText(int64_t from, int64_t to) {
    const tm first = local(from);
    const std::string date = fmt::format("{} {} {}", weekdayOf(first), first.tm_mday, nameOf(first.tm_mon));
    if (to - from <= minuteOf) return date + ", " + clockOf(first);
    constexpr int64_t longestDay = day + 2 * 3600, shortestDay = day - 2 * 3600;
    if (to - from > longestDay) {
        return fmt::format("{} {} – {}", first.tm_mday, nameOf(first.tm_mon), dateText(to - 1));
    }
    if (to - from > shortestDay) return fmt::format("{} {}", date, first.tm_year + 1900);
    return fmt::format("{}, {} – {}", date, clockOf(first), clockOf(local(to)));
}

std::string clockText(int64_t time) { return clockOf(local(time)); }

std::string dateText(int64_t time) {
    const tm parts = local(time);
    return fmt::format("{} {} {}", parts.tm_mday, nameOf(parts.tm_mon), parts.tm_year + 1900);
}

} // namespace quarn
