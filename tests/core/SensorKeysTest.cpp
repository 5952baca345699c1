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

TEST(SensorKeys, ADeviceKeepsItsKeyWhenOthersAreFirst) {
    const auto keyBehind = [](const std::vector<const char*>& others) {
        SensorKeys keys;
        for (const char* other : others) keys.assign(SensorKind::temperature, SensorClass::nvme, other, 1);
        return keys.assign(SensorKind::temperature, SensorClass::nvme, "nvme|S4X1", 1);
    };
    EXPECT_EQ(keyBehind({}), keyBehind({"nvme|other"}));
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
    const struct {
        const char *name, *device;
        uint32_t pciClass;
        SensorClass expected;
    } cases[] = {
        {"k10temp", "", 0x060000, SensorClass::cpu},
        {"amdgpu", "/sys/devices/pci0000:00/0000:01:00.0", 0x030000, SensorClass::gpu},
        {"unheard_of", "/sys/devices/pci0000:00/0000:01:00.0", 0x030000, SensorClass::gpu},
        {"unheard_of", "/sys/devices/pci0000:00/0000:01:00.0", 0x020000, SensorClass::network},
        {"unheard_of", "/sys/devices/pci0000:00/0000:01:00.0", 0x010802, SensorClass::nvme},
        {"unheard_of", "/sys/devices/platform/soc/wifi/ieee80211/phy0", 0, SensorClass::network},
        {"mt7996_phy0_0", "", 0, SensorClass::network},
        {"BAT0", "/sys/devices/x/power_supply/BAT0", 0, SensorClass::battery},
        {"cpu", "/sys/devices/x/power_supply/cpu", 0, SensorClass::battery},
        {"nct6779", "/sys/devices/platform/nct6775.656", 0, SensorClass::board},
        {"", "", 0, SensorClass::board},
    };
    for (const auto& one : cases)
        EXPECT_EQ(classOfChip(one.name, one.device, one.pciClass), one.expected) << one.name << one.device;

    EXPECT_EQ(classOfSensor(SensorClass::board, "CPUTIN"), SensorClass::cpu);
    EXPECT_EQ(classOfSensor(SensorClass::board, "SODIMM"), SensorClass::memory);
    EXPECT_EQ(classOfSensor(SensorClass::board, "SYSTIN"), SensorClass::board);
    EXPECT_EQ(classOfSensor(SensorClass::gpu, "memory"), SensorClass::gpu) << "its own memory";
}

TEST(SensorClass, AttributeNames) {
    using Item = HwmonAttribute::Item;
    const struct {
        const char* name;
        int number;
        SensorKind kind;
        Item item;
    } cases[] = {
        {"temp12_input", 12, SensorKind::temperature, Item::input},
        {"in0_input", 0, SensorKind::voltage, Item::input},
        {"power1_average", 1, SensorKind::power, Item::average},
        {"curr3_crit", 3, SensorKind::current, Item::crit},
        {"fan2_enable", 2, SensorKind::fan, Item::enable},
        {"temp1_crit_alarm", 1, SensorKind::temperature, Item::other},
        {"power1_average_interval", 1, SensorKind::power, Item::other},
        {"temp1", 1, SensorKind::temperature, Item::other},
    };
    for (const auto& one : cases) {
        const auto attribute = parseHwmonAttribute(one.name);
        EXPECT_EQ(attribute.number, one.number) << one.name;
        EXPECT_EQ(attribute.kind, one.kind) << one.name;
        EXPECT_EQ(attribute.item, one.item) << one.name;
    }
    for (const char* name :
         {"intrusion0_alarm", "in-1_input", "temp99999999_input", "temp_input", "freq1_input", ""})
        EXPECT_EQ(parseHwmonAttribute(name).number, -1) << name;
}

TEST(SensorClass, LimitsThatAreNone) {
    for (const double value : {-273.15, 65261.85, 0.0})
        EXPECT_FALSE(plausibleLimit(SensorKind::temperature, value));
    EXPECT_EQ(plausibleLimit(SensorKind::temperature, 84.85), 84.85);
    EXPECT_EQ(plausibleLimit(SensorKind::fan, 6156), 6156);
}

} // namespace
