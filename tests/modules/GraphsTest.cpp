// What small graphs show: their columns and their scale.
#include "ui/modules/GraphBuckets.h"
#include "ui/modules/Scale.h"
#include "ui/modules/SteadyTop.h"

#include <cmath>

namespace quarn {
namespace {

using Columns = std::vector<double>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(GraphBuckets, AColumnIsThePeakOfItsSlice) {
    GraphBuckets graph(3); // slices of 2 s in a span of 6 s
    for (const auto& [time, value] : {std::pair{10.0, 1.0}, {11.0, 9.0}, {11.9, 2.0}})
        graph.pushSample(value, time, 6);
    EXPECT_EQ(graph.buckets(), Columns{}); // still open
    graph.pushSample(3, 12, 6);
    EXPECT_EQ(graph.buckets(), Columns{9});
    graph.pushSample(1, 14, 6); // the value that closed the one before belongs to this one too
    graph.pushSample(5, 16, 6);
    EXPECT_EQ(graph.buckets(), (Columns{9, 3, 5}));
    graph.pushSample(0, 18, 6);
    EXPECT_EQ(graph.buckets(), (Columns{3, 5, 5})) << "the oldest goes";
}

TEST(GraphBuckets, NoSliceIsShorterThanAFifthOfASecond) {
    struct Case {
        double span;
        std::optional<double> slice;
    };
    for (const auto& [span, slice] :
         {Case{60, 0.05}, Case{60, 0}, Case{60, -1}, Case{60, nan}, Case{1, {}}}) {
        GraphBuckets graph(100);
        for (int i = 0; i <= 16; ++i) graph.pushSample(i, i / 16.0, span, slice);
        EXPECT_EQ(graph.buckets().size(), 4U) << slice.value_or(span); // each of 4/16 s
    }
}

TEST(GraphBuckets, NoReadingIsAGapAndDoesNotHideOneInItsSlice) {
    GraphBuckets graph(4);
    for (const auto& [time, value] : {std::pair{0.0, nan}, {1.0, nan}, {1.5, 4.0}, {1.7, nan}, {2.0, nan}})
        graph.pushSample(value, time, 60, 1);
    ASSERT_EQ(graph.buckets().size(), 2U);
    EXPECT_TRUE(std::isnan(graph.buckets()[0]));
    EXPECT_EQ(graph.buckets()[1], 4);
}

TEST(GraphBuckets, AChangedSpanHoldsFromTheNextSampleOn) {
    GraphBuckets graph(10);
    for (const double time : {0.0, 5.0}) graph.pushSample(1, time, 100); // slices of 10 s
    EXPECT_TRUE(graph.buckets().empty());
    graph.pushSample(2, 6, 10); // of 1 s
    EXPECT_EQ(graph.buckets(), Columns{2});
}

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
    EXPECT_EQ(top.follow(nan, 32), 5);
}

TEST(Scale, MarksAreShortFigures) {
    for (const auto& [largest, top, steps] : {std::tuple{0.3, 0.5, 5},
                                              {0.5, 0.5, 5},
                                              {0.9, 1.0, 5},
                                              {17.0, 20.0, 4},
                                              {0.0012, 0.002, 4},
                                              {999.0, 1000.0, 5}}) {
        EXPECT_DOUBLE_EQ(niceTop(largest), top);
        EXPECT_EQ(scaleSteps(top), steps) << top;
    }
}

} // namespace
} // namespace quarn
