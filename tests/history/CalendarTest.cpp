#include "history/Calendar.h"

#include "history/Support.h"

namespace quarn::testing {
namespace {

TEST(Calendar, DaysFollowTheClockOfTheZone) {
    struct Row {
        const char* zone;
        int64_t time, start, hours; ///< of the day that contains `time`
    };
    constexpr int64_t march30 = 1'774'821'600;   // 2026-03-30 0:00 in Berlin, the day after the change
    constexpr int64_t october25 = 1'792'879'200; // 2026-10-25 0:00 in Berlin
    const std::vector<Row> rows{
        {berlin, march30 - 1, march30 - 23 * 3600, 23},
        {berlin, march30, march30, 24},
        {berlin, october25, october25, 25},
        {berlin, october25 + 25 * 3600 - 1, october25, 25},
        {kolkata, march30, 1'774'809'000, 24},                            // 18:30 of universal time
        {"XXX4YYY,M3.5.0/0,M10.5.0/0", 1'774'760'400, 1'774'756'800, 23}, // a day that begins at 1:00
    };
    for (const auto& row : rows) {
        const TimeZone zone(row.zone);
        const Calendar calendar;
        EXPECT_EQ(calendar.startOfDay(row.time), row.start) << row.zone << " " << row.time;
        EXPECT_EQ(calendar.nextDay(row.time), row.start + row.hours * 3600) << row.zone << " " << row.time;
        EXPECT_EQ(calendar.previousDay(row.start + row.hours * 3600), row.start);
    }
}

} // namespace
} // namespace quarn::testing
