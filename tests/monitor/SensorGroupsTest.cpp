#include "monitor/SensorGroups.h"

#include <cmath>

namespace {

using namespace quarn;
using Maxima = std::map<std::string, double>;

Maxima maxima(const std::vector<Sensor>& sensors, SensorNaming naming) {
    Maxima result;
    for (const auto& maximum : SensorGroups::maxima(sensors, naming))
        result[std::string(maximum.prefix)] = maximum.celsius;
    return result;
}

TEST(SensorGroups, TheHottestOfEachSlot) {
    const std::vector<Sensor> sensors{{"TC01", 50},  {"TC02", 71}, {"TG01", 44},           {"Tp01", 60},
                                      {"Tp02", -20}, {"Tm0P", 30}, {"TCxx", std::nan("")}, {"XC01", 99}};
    EXPECT_EQ(maxima(sensors, SensorNaming::intel), (Maxima{{"TC", 71}, {"TG", 44}, {"Tm", 30}}));
    EXPECT_EQ(maxima(sensors, SensorNaming::appleSilicon), (Maxima{{"Tp", 60}, {"Tm", 30}}));
    EXPECT_EQ(maxima({{"TB0T", -3}}, SensorNaming::intel), (Maxima{{"TB", -3}}))
        << "below zero is a maximum too";
    EXPECT_TRUE(maxima({}, SensorNaming::intel).empty());
    const auto first = SensorGroups::maxima(sensors, SensorNaming::intel).front();
    EXPECT_EQ(first.prefix, SensorGroups::slotNames(SensorNaming::intel).front().prefix);
}

TEST(SensorGroups, ScalesAreShared) {
    EXPECT_EQ(SensorGroups::scaleKey("TC", SensorNaming::intel), "Tp");
    EXPECT_EQ(SensorGroups::scaleKey("TG", SensorNaming::intel), "Tg");
    EXPECT_EQ(SensorGroups::scaleKey("TH", SensorNaming::intel), "TH");
    EXPECT_EQ(SensorGroups::scaleKey("Tp", SensorNaming::appleSilicon), "Tp");
}

} // namespace
