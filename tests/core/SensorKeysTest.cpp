#include "core/linux/SensorKeys.h"

#include "core/SMCDecode.h"
#include "core/SMCProtocol.h"
#include "core/linux/SensorHwmon.h"

#include <set>

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;

std::string text(uint32_t key) { return key == 0 ? "" : smcText(key).data(); }

TEST(SensorKeys, KindClassChipAndNumber) {
    SensorKeys keys;
    const auto key = text(keys.assign(SensorKind::temperature, SensorClass::cpu, "coretemp|a", 11));
    EXPECT_EQ(key.substr(0, 2), "TC");
    EXPECT_EQ(key[3], 'B');
    const auto voltage = text(keys.assign(SensorKind::voltage, SensorClass::cpu, "coretemp|a", 0));
    EXPECT_EQ(voltage, std::string("VC") + key[2] + '0') << "one character for all kinds of a chip";
    EXPECT_EQ(text(keys.assign(SensorKind::temperature, SensorClass::cpu, "coretemp|a", 11)), key);
}

TEST(SensorKeys, ManySensorsGetDifferentTemperatureKeys) {
    SensorKeys keys;
    std::set<uint32_t> seen;
    // More chips than there are characters for them, and one with more sensors than there are for those.
    for (int chip = 0; chip < 80; ++chip) {
        for (int number = 1; number <= (chip == 0 ? 200 : 20); ++number) {
            const auto key = keys.assign(SensorKind::temperature, SensorClass::cpu,
                                         "coretemp|" + std::to_string(chip), number);
            EXPECT_TRUE(isTemperatureKey(key)) << text(key);
            EXPECT_TRUE(seen.insert(key).second) << text(key);
        }
    }
}

TEST(SensorKeys, SixteenFansAndEachOfTheHardwaresOwnKeysOnce) {
    SensorKeys keys;
    std::string fans;
    for (int fan = 0; fan <= 16; ++fan)
        fans += text(keys.assign(SensorKind::fan, SensorClass::board, "nct6779|a", fan));
    EXPECT_EQ(fans, "F0AcF1AcF2AcF3AcF4AcF5AcF6AcF7AcF8AcF9AcFAAcFBAcFCAcFDAcFEAcFFAc")
        << "the last has none";
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(text(keys.assignNamed(smcCode("TC0P"), "applesmc|a", 3)), "TC0P");
    EXPECT_EQ(keys.assignNamed(smcCode("TC0P"), "applesmc|b", 3), 0u);
}

TEST(SensorClass, WhereAChipBelongs) {
    const std::string card = "/sys/devices/pci0000:00/0000:01:00.0";
    EXPECT_EQ(classOfChip("k10temp", "", 0x060000), SensorClass::cpu);
    EXPECT_EQ(classOfChip("amdgpu", card, 0x030000), SensorClass::gpu);
    EXPECT_EQ(classOfChip("unheard_of", card, 0x030000), SensorClass::gpu);
    EXPECT_EQ(classOfChip("unheard_of", card, 0x020000), SensorClass::network);
    EXPECT_EQ(classOfChip("unheard_of", card, 0x010802), SensorClass::nvme);
    EXPECT_EQ(classOfChip("unheard_of", "/sys/devices/wifi/ieee80211/phy0", 0), SensorClass::network);
    EXPECT_EQ(classOfChip("mt7996_phy0_0", "", 0), SensorClass::network);
    EXPECT_EQ(classOfChip("BAT0", "/sys/devices/x/power_supply/BAT0", 0), SensorClass::battery);
    EXPECT_EQ(classOfChip("cpu", "/sys/devices/x/power_supply/cpu", 0), SensorClass::battery);
    EXPECT_EQ(classOfChip("nct6779", "/sys/devices/platform/nct6775.656", 0), SensorClass::board);
    EXPECT_EQ(classOfChip("", "", 0), SensorClass::board);

    EXPECT_EQ(classOfSensor(SensorClass::board, "CPUTIN"), SensorClass::cpu);
    EXPECT_EQ(classOfSensor(SensorClass::board, "SODIMM"), SensorClass::memory);
    EXPECT_EQ(classOfSensor(SensorClass::board, "SYSTIN"), SensorClass::board);
    EXPECT_EQ(classOfSensor(SensorClass::gpu, "memory"), SensorClass::gpu) << "its own memory";
}

TEST(SensorClass, AttributeNames) {
    using Item = HwmonAttribute::Item;
    const auto is = [](const char* name, int number, SensorKind kind, Item item) {
        const auto attribute = parseHwmonAttribute(name);
        return attribute.number == number && attribute.kind == kind && attribute.item == item;
    };
    EXPECT_TRUE(is("temp12_input", 12, SensorKind::temperature, Item::input));
    EXPECT_TRUE(is("in0_input", 0, SensorKind::voltage, Item::input));
    EXPECT_TRUE(is("power1_average", 1, SensorKind::power, Item::average));
    EXPECT_TRUE(is("curr3_crit", 3, SensorKind::current, Item::crit));
    EXPECT_TRUE(is("fan2_enable", 2, SensorKind::fan, Item::enable));
    EXPECT_TRUE(is("temp1_crit_alarm", 1, SensorKind::temperature, Item::other));
    EXPECT_TRUE(is("power1_average_interval", 1, SensorKind::power, Item::other));
    EXPECT_TRUE(is("temp1", 1, SensorKind::temperature, Item::other));
    for (const char* name :
         {"intrusion0_alarm", "in-1_input", "temp99999999_input", "temp_input", "freq1_input", ""})
        EXPECT_EQ(parseHwmonAttribute(name).number, -1) << name;
}

} // namespace
