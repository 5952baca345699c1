#include "ui/modules/ChartText.h"

#include <gtest/gtest.h>

namespace quarn {
namespace {

TEST(ChartText, saysHowLongAgo) {
    EXPECT_EQ(agoText(0), "now");
    EXPECT_EQ(agoText(60), "−60 s");
    EXPECT_EQ(agoText(59.7), "−60 s");
    EXPECT_EQ(agoText(300), "−5 min");
    EXPECT_EQ(agoText(252.2), "−4 min 12 s");
    EXPECT_EQ(agoText(1800), "−30 min");
}

TEST(ChartText, shortensAReadingToAMark) {
    EXPECT_EQ(scaleMark("75.0 %"), "75 %");
    EXPECT_EQ(scaleMark("2.50 MB/s"), "2.5 MB/s");
    EXPECT_EQ(scaleMark("500 kB/s"), "500 kB/s"); // zeros that count
    EXPECT_EQ(scaleMark("100"), "100");
    EXPECT_EQ(scaleMark("—"), "—");
}

} // namespace
} // namespace quarn
