#include "ui/modules/SteadyTop.h"

#include <gtest/gtest.h>
#include <limits>

namespace quarn {
namespace {

TEST(SteadyTop, growsAtOnceAndShrinksOnlyAfterTenSeconds) {
    struct Step {
        double now, largest, top;
    };
    const Step steps[] = {
        {0, 0, 1},       // nothing yet
        {1, 90, 100},    // at once
        {2, 3, 100},     // low from here on
        {11.9, 3, 100},  // not ten seconds
        {12, 3, 5},      // ten seconds
        {13, 0.5, 5},    // low again
        {18, 4, 5},      // and back: the ten seconds begin anew
        {19, 0.5, 5},    //
        {24, 1.7, 5},    // the largest of those seconds counts, not the last
        {29, 0.5, 2},    //
        {30, 2000, 2000} //
    };
    SteadyTop top;
    for (const auto& step : steps) EXPECT_EQ(top.follow(step.largest, step.now), step.top) << step.now;
    top.reset();
    EXPECT_EQ(top.follow(3, 31), 5);
    EXPECT_EQ(top.follow(std::numeric_limits<double>::quiet_NaN(), 32), 5);
}

} // namespace
} // namespace quarn
