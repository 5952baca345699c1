#include "monitor/SMCKeyNames.h"

namespace {

using quarn::SMCKeyNames;
using sysinfo::SensorDescription;
using sysinfo::smcCode;

TEST(SMCKeyNames, SensorsOfThisMachine) {
    struct Case {
        const char* key;
        const char* label;
        const char* chip;
        int number;
        const char* name;
    };
    const Case cases[] = {
        {"TC01", "Package id 0", "coretemp", 1, "CPU package (coretemp)"},
        {"TC11", "Physical id 1", "coretemp.1", 1, "CPU package 1 (coretemp.1)"},
        {"TC02", "Core 12", "coretemp", 14, "CPU core 12 (coretemp)"},
        {"TC03", "Tccd2", "k10temp", 4, "CPU chiplet 2 (k10temp)"},
        {"TN01", "Composite", "NVMe Samsung SSD 980", 1, "Composite (NVMe Samsung SSD 980)"},
        {"TG02", "junction", "amdgpu", 2, "GPU hot spot (amdgpu)"},
        {"TG01", "", "i915", 1, "Temperature 1 (i915)"},
        {"F2Ac", "", "nct6779", 2, "Fan 2 (nct6779)"},
        {"PSTR", "battery discharge", "power supply", 0, "Whole machine (battery discharge)"},
        {"PSTR", "", "power_meter", 1, "Whole machine (power_meter)"},
        {"TC0P", "", "SMC", 7, "CPU proximity 1"},
        {"Zxyz", "", "SMC", 8, "Zxyz"},
    };
    for (const Case& one : cases) {
        SensorDescription sensor;
        sensor.key = smcCode(one.key);
        sensor.label = one.label;
        sensor.chip = one.chip;
        sensor.number = one.number;
        EXPECT_EQ(SMCKeyNames::describe(sensor), one.name);
    }
}

TEST(SMCKeyNames, WellKnownKeysAndOthers) {
    const sysinfo::SMC none{std::unique_ptr<sysinfo::SMCConnection>()};
    for (const auto& [key, name] : {std::pair{"TC0P", "CPU proximity 1"},
                                    {"TC3C", "CPU core 4"},
                                    {"F0Ac", "Fan 1"},
                                    {"PSTR", "Whole machine"},
                                    {"TCxC", "TCxC"},
                                    {"toolong", "toolong"},
                                    {"", ""}})
        EXPECT_EQ(SMCKeyNames::describe(key, none), name);
}

TEST(SMCKeyNames, OfACapturedMachine) {
    sysinfo::SMC smc(sysinfo::SystemRoot(QUARN_FIXTURES "/sensors/ryzen"));
    std::set<std::string> names;
    for (const uint32_t key : smc.keys())
        names.insert(SMCKeyNames::describe(std::string_view(sysinfo::smcText(key).data(), 4), smc));
    EXPECT_EQ(names, (std::set<std::string>{"CPU control value (k10temp)", "CPU chiplet 1 (k10temp)",
                                            "Composite (nvme)", "Sensor 1 (nvme)", "Sensor 2 (nvme)"}));
}

} // namespace
