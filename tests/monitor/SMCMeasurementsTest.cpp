#include "monitor/SMCMeasurements.h"

#include <cmath>
#include <limits>

namespace {

using namespace quarn;
using Names = std::set<std::string>;

Names names(const std::vector<Sensor>& sensors) {
    Names result;
    for (const auto& sensor : sensors) result.insert(sensor.name);
    return result;
}

TEST(SMCMeasurements, ARailIsShownFromItsFirstLiveReading) {
    const auto first =
        SMCMeasurements::electrical({{"PC0R", 0}, {"PG0R", 12}}, {{"VC0R", 0}}, {{"IC0R", 0}}, {});
    EXPECT_EQ(names(first.power), (Names{"PG0R"}));
    EXPECT_TRUE(first.voltage.empty());
    EXPECT_EQ(first.verified, (Names{"PG0R"}));

    const auto live = SMCMeasurements::electrical({{"PC0R", -3}, {"PG0R", 0}}, {{"VC0R", 0}},
                                                  {{"IG0R", 0}, {"IX0R", 0}}, first.verified);
    EXPECT_EQ(names(live.power), (Names{"PC0R", "PG0R"})) << "an idle rail stays";
    EXPECT_EQ(names(live.voltage), (Names{"VC0R"})) << "its power vouches for it";
    EXPECT_EQ(names(live.current), (Names{"IG0R"}));

    const auto again = SMCMeasurements::electrical({}, {{"VX0R", 1.1}}, {}, live.verified);
    EXPECT_EQ(again.verified, (Names{"PC0R", "PG0R", "VX0R"})) << "what was verified stays so";
}

TEST(SMCMeasurements, WhatNoSupplyGives) {
    const double nan = std::nan("");
    const auto result =
        SMCMeasurements::electrical({{"PAAA", 4'294'967}, {"PBBB", nan}, {"", 3}}, {{"VAAA", -1001}},
                                    {{"IAAA", std::numeric_limits<double>::infinity()}}, {"PAAA"});
    EXPECT_EQ(names(result.power), (Names{""}));
    EXPECT_TRUE(result.voltage.empty());
    EXPECT_TRUE(result.current.empty());
}

} // namespace
