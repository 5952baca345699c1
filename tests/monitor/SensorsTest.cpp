// Sensors: what they are called, how they are grouped, and which electrical ones are shown.
#include "monitor/SMCKeyNames.h"
#include "monitor/SMCMeasurements.h"
#include "monitor/SensorGroups.h"

#include <cmath>
#include <limits>

namespace quarn::testing {
namespace {

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

TEST(SMCKeyNames, SensorsOfThisMachine) {
    const auto described = [](const char* key, const char* label, const char* chip, int number) {
        sysinfo::SensorDescription sensor;
        sensor.key = sysinfo::smcCode(key);
        sensor.label = label;
        sensor.chip = chip;
        sensor.number = number;
        return SMCKeyNames::describe(sensor);
    };
    EXPECT_EQ(described("TC01", "Package id 0", "coretemp", 1), "CPU package (coretemp)");
    EXPECT_EQ(described("TC11", "Physical id 1", "coretemp.1", 1), "CPU package 1 (coretemp.1)");
    EXPECT_EQ(described("TC02", "Core 12", "coretemp", 14), "CPU core 12 (coretemp)");
    EXPECT_EQ(described("TN01", "Composite", "NVMe Samsung", 1), "Composite (NVMe Samsung)");
    EXPECT_EQ(described("F2Ac", "", "nct6779", 2), "Fan 2 (nct6779)");
    EXPECT_EQ(described("PSTR", "battery discharge", "power supply", 0), "Whole machine (battery discharge)");
    EXPECT_EQ(described("PSTR", "", "power_meter", 1), "Whole machine (power_meter)");
    EXPECT_EQ(described("TC0P", "", "SMC", 7), "CPU proximity 1");
    EXPECT_EQ(described("Zxyz", "", "SMC", 8), "Zxyz");
}

TEST(SMCKeyNames, OfKeys) {
    const sysinfo::SMC none{std::unique_ptr<sysinfo::SMCConnection>()};
    for (const auto& [key, name] : {std::pair{"TC3C", "CPU core 4"},
                                    {"F0Ac", "Fan 1"},
                                    {"PSTR", "Whole machine"},
                                    {"TCxC", "TCxC"},
                                    {"toolong", "toolong"},
                                    {"", ""}})
        EXPECT_EQ(SMCKeyNames::describe(key, none), name);
    sysinfo::SMC ryzen(sysinfo::SystemRoot(QUARN_FIXTURES "/sensors/ryzen"));
    ryzen.keys(); // looks for the sensors
    EXPECT_EQ(SMCKeyNames::describe("TCC3", ryzen), "CPU chiplet 1 (k10temp)");
}

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
} // namespace quarn::testing
