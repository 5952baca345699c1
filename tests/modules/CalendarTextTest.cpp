#include "ui/modules/CalendarText.h"

#include "history/Support.h"

namespace quarn {
namespace {

/// A user of Berlin, where the clock goes forward on 2026-03-29 at 1:00 UTC and back on 2026-10-25.
struct CalendarTextTest : ::testing::Test {
    const testing::TimeZone zone{testing::berlin};

    static int64_t at(int month, int dayOfMonth, int hour, int minute = 0) {
        tm parts{0, minute, hour, dayOfMonth, month - 1, 126, 0, 0, -1, 0, nullptr};
        return ::mktime(&parts);
    }
    static std::string texts(int64_t from, int64_t to, size_t most) {
        std::string all;
        int64_t before = from - 1;
        for (const auto& tick : calendarTicks(from, to, most)) {
            all += (all.empty() ? "" : "|") + tick.text;
            EXPECT_GT(tick.time, before);
            EXPECT_LE(tick.time, to);
            before = tick.time;
        }
        return all;
    }
};

constexpr int64_t hour = 3600, day = 86'400;

TEST_F(CalendarTextTest, TicksStandAtRoundLocalTimes) {
    const struct {
        const char* what;
        int64_t from, to;
        size_t most;
        const char* expected;
    } cases[]{
        {"an hour", at(10, 14, 14, 7), at(10, 14, 15, 7), 6, "14:10|14:20|14:30|14:40|14:50|15:00"},
        {"a day", at(10, 14, 15), at(10, 15, 15), 5, "18:00|Thu 15|06:00|12:00"},
        {"a day that is an hour longer", at(10, 25, 0), at(10, 26, 0), 5, "Sun 25|06:00|12:00|18:00|Mon 26"},
        {"a day that lacks 2:00", at(3, 29, 0), at(3, 29, 6), 7, "Sun 29|01:00|03:00|04:00|05:00|06:00"},
        {"a week", at(10, 21, 9), at(10, 28, 9), 7, "Thu 22|Fri 23|Sat 24|Sun 25|Mon 26|Tue 27|Wed 28"},
        {"a week in little room", at(10, 21, 9), at(10, 28, 9), 4, "Thu 22|Sat 24|Mon 26|Wed 28"},
        {"a month", at(10, 1, 9), at(10, 31, 9), 8, "5 Oct|12 Oct|19 Oct|26 Oct"},
        {"a year", at(10, 20, 9) - 365 * day, at(10, 20, 9), 12,
         "Nov|Dec|2026|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct"},
        {"two years", at(10, 20, 9) - 730 * day, at(10, 20, 9), 6, "2025|Jul|2026|Jul"},
        {"no room", at(10, 1, 9), at(10, 31, 9), 0, ""},
        {"nothing", at(10, 1, 9), at(10, 1, 9), 6, ""},
    };
    for (const auto& c : cases) EXPECT_EQ(texts(c.from, c.to, c.most), c.expected) << c.what;
}

TEST_F(CalendarTextTest, TicksFollowZonesOfHalfHours) {
    testing::TimeZone::set(testing::kolkata);
    EXPECT_EQ(texts(at(10, 14, 22), at(10, 15, 2), 4), "22:00|Thu 15|02:00");
}

TEST_F(CalendarTextTest, PeriodsAreToldByWhatTheyAre) {
    EXPECT_EQ(periodText(at(10, 14, 15, 4), at(10, 14, 15, 5)), "Wed 14 Oct, 15:04");
    EXPECT_EQ(periodText(at(10, 14, 15), at(10, 14, 16)), "Wed 14 Oct, 15:00 – 16:00");
    EXPECT_EQ(periodText(at(3, 29, 0), at(3, 30, 0)), "Sun 29 Mar 2026") << "of 23 hours";
    EXPECT_EQ(periodText(at(10, 25, 1) + hour, at(10, 25, 1) + 3 * hour), "Sun 25 Oct, 02:00 – 03:00")
        << "the hour that comes twice";
    EXPECT_EQ(periodText(at(10, 19, 0), at(10, 26, 0)), "19 Oct – 25 Oct 2026");
    EXPECT_EQ(dateText(at(1, 2, 0)), "2 Jan 2026");
}

} // namespace
} // namespace quarn
