#include "monitor/SMCKeyNames.h"

namespace {

using quarn::SMCKeyNames;

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

} // namespace
