#include "monitor/RateWindow.h"

#include <array>

namespace {

using quarn::RateWindow;
using Rates = std::vector<double>;

Rates push(RateWindow& window, uint64_t a, uint64_t b, double at) {
    return window.push(std::array{a, b}, at);
}

TEST(RateWindow, AveragesOverTheWindow) {
    RateWindow window(3);
    EXPECT_EQ(push(window, 0, 0, 0), (Rates{0, 0}));
    EXPECT_EQ(push(window, 100, 10, 1), (Rates{100, 10}));
    EXPECT_EQ(push(window, 100, 10, 2), (Rates{50, 5}));
    // At 4 s the sample of 0 s is dropped, since that of 1 s already spans the window.
    EXPECT_EQ(push(window, 400, 40, 4), (Rates{100, 10}));
}

TEST(RateWindow, StartsAnewAfterAnythingThatCannotBeCompared) {
    RateWindow window(10);
    push(window, 100, 100, 1);
    push(window, 200, 200, 2);
    EXPECT_EQ(push(window, 199, 300, 3), (Rates{0, 0})) << "a counter fell";
    EXPECT_EQ(push(window, 299, 400, 4), (Rates{100, 100}));
    EXPECT_EQ(push(window, 300, 500, 3.5), (Rates{0, 0})) << "time went back";
    EXPECT_EQ(window.push(std::array<uint64_t, 1>{900}, 9), (Rates{0})) << "another number of counters";
    EXPECT_EQ(window.push(std::array<uint64_t, 1>{950}, 9), (Rates{0})) << "no time passed";
}

} // namespace
