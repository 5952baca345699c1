#include "monitor/SensorGroups.h"

#include <cmath>

namespace {

using namespace quarn;

/// "TC 71, TG 44, " in the order of the slots.
std::string maxima(const std::vector<Sensor>& sensors, SensorNaming naming) {
    std::string text;
    for (const auto& maximum : SensorGroups::maxima(sensors, naming))
        text.append(maximum.prefix) += ' ' + std::to_string(std::lround(maximum.celsius)) + ", ";
    return text;
}

TEST(SensorGroups, TheHottestOfEachSlot) {
    const std::vector<Sensor> sensors{{"TCxx", std::nan("")}, {"TC01", 50}, {"Tm0P", 30},  {"TC02", 71},
                                      {"TG01", 44},           {"Tp01", 60}, {"Tp02", -20}, {"XC01", 99}};
    EXPECT_EQ(maxima(sensors, SensorNaming::intel), "TC 71, TG 44, Tm 30, ");
    EXPECT_EQ(maxima(sensors, SensorNaming::appleSilicon), "Tp 60, Tm 30, ");
    EXPECT_EQ(maxima({{"TB0T", -3}}, SensorNaming::intel), "TB -3, ") << "below zero is a maximum too";
}

TEST(SensorGroups, ScalesAreShared) {
    EXPECT_EQ(SensorGroups::scaleKey("TC", SensorNaming::intel), "Tp");
    EXPECT_EQ(SensorGroups::scaleKey("TH", SensorNaming::intel), "TH");
    EXPECT_EQ(SensorGroups::scaleKey("Tp", SensorNaming::appleSilicon), "Tp");
}

} // namespace
