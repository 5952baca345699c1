// Captured machines and what each of them teaches, sources other than chips, and the keys that sensors get.
#include "SensorSupport.h"
#include "core/SMCDecode.h"
#include "core/SMCProtocol.h"
#include "core/linux/SensorHwmon.h"
#include "core/linux/SensorKeys.h"
#include "core/linux/SensorSupply.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <sstream>

namespace {

using namespace quarn::testing;

/// A line for each sensor of a captured machine: kind and class, chip, label, value and limits.
std::string listing(const std::string& name) {
    SensorMachine machine(capturedRoot("sensors/" + name));
    std::multiset<std::string> lines;
    for (const char kind : {'T', 'F', 'P', 'V', 'I'})
        for (const auto& [key, value] : machine.of(kind)) {
            const auto sensor = machine.smc.describe(smcCode(key)).value();
            lines.insert(joined(key.substr(0, 2), sensor.chip, sensor.label, std::round(value * 1000) / 1000,
                                sensor.max, sensor.crit));
        }
    std::string text;
    for (const auto& line : lines) text += line + '\n';
    return text;
}

/// "label (chip) value, " of each, in order of the labels.
std::string named(SensorMachine& machine, const Readings& readings) {
    std::ostringstream text;
    for (const auto& [name, value] : machine.named(readings)) text << name << ' ' << value << ", ";
    return text.str();
}

TEST(SensorMachines, ElevenChips) {
    SensorMachine machine(capturedRoot("sensors/eleven-chips"));
    const auto temperatures = machine.temperatures();
    // Two chips of one name are told apart by their devices; one without any name is listed all the same.
    EXPECT_EQ(
        named(machine, temperatures),
        " (mt7996_phy0_0) 55,  (mt7996_phy0_1) 56,  (mt7996_phy0_2) 57, Core 0 (coretemp.0) 54, "
        "Core 0 (coretemp.1) 54, Core 1 (coretemp.0) 52, Core 1 (coretemp.1) 52, Core 2 (coretemp.0) 53, "
        "Core 2 (coretemp.1) 53, Core 3 (coretemp.0) 50, Core 3 (coretemp.1) 50, "
        "Physical id 0 (coretemp.0) 55, Physical id 0 (coretemp.1) 55, "
        "foosensor 1 (unnamed chip) 55, foosensor 2 (unnamed chip) 54, ");
    EXPECT_EQ(std::count_if(temperatures.begin(), temperatures.end(),
                            [](const auto& reading) { return reading.first.starts_with("TC"); }),
              10);
    // applesmc keeps its attributes in the device's folder, and a stopped fan is a reading.
    EXPECT_EQ(named(machine, machine.of('F')),
              " (nct6779) 1098, Left side (applesmc) 0, Right side (applesmc) 1998, ");
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 0}, {"F1Ac", 1998}, {"F2Ac", 1098}}));
    // "intrusion0_alarm" begins as a voltage does.
    EXPECT_EQ(machine.of('V').size(), 2u);
    for (const auto& [key, value] : machine.of('V'))
        EXPECT_NEAR(value, key.ends_with('0') ? 0.792 : 1.024, 1e-6);
    EXPECT_EQ(machine.smc.keys().size(), 20u);
}

TEST(SensorMachines, AreListedAsKept) {
    const char* const machines[][2] = {
        {"disk-and-network", "a limit of 65261850 says that there is none"},
        {"graphics-cards", "a name before a hundred blanks and NULs; an average alone, or beside the present "
                           "value, which comes first; a fan whose control is off still turns"},
        {"ryzen", "chips without the folders of their devices"},
        {"two-zones", "the processor's thermal zone alone, for the other reads -44 degrees"},
    };
    for (const auto& [machine, teaches] : machines)
        EXPECT_EQ(listing(machine), fixture("sensors/" + std::string(machine) + ".txt")) << teaches;
}

TEST(SensorMachines, ALaptopOnItsBattery) {
    SensorMachine machine(capturedRoot("sensors/laptop-supplies"));
    EXPECT_NEAR(machine.sensors.value("PSTR"), 4.83, 1e-6) << "asked before anything was enumerated";
    EXPECT_TRUE(std::isnan(machine.sensors.value("PDTR")));
}

const std::string folder = "sys/devices/platform/applesmc.768";

/// The Apple SMC driver's key files: a cursor that is written, and what then lies under it.
struct AppleKeyFiles {
    AppleKeyFiles() {
        root.files(folder, "key_at_index=0;name=applesmc;key_count=6")
            .files("sys/class/hwmon/hwmon0",
                   "name=applesmc;temp1_input=61000;temp1_label=TC0P;fan1_input=1800");
        moveTo(0);
    }
    void moveTo(size_t cursor) {
        using namespace std::string_literals;
        const std::array<std::string, 3> keys[] = {
            {"#KEY", "ui32", "\0\0\0\6"s}, {"TC0P", "sp78", "\x2a\x80"s},
            {"F0Ac", "fpe2", "\x1f\x40"s}, {"PSTR", "flt ", "\0\0\x28\x42"s},
            {"RBr ", "ch8*", "j680"},      {"Huge", "ch8*", std::string(40, 'x')}};
        const auto& [name, type, data] = keys[cursor];
        root.files(folder, "key_at_index_name=" + name + ";key_at_index_type=" + type +
                               ";key_at_index_data_length=" + std::to_string(data.size()));
        root.write(folder + "/key_at_index_data", data);
    }
    bool write(const std::string& path, std::string_view text) {
        EXPECT_TRUE(path.ends_with("/key_at_index"));
        moveTo(std::stoul(std::string(text)));
        return true;
    }
    TempRoot root;
};

TEST(AppleKeys, ComeBeforeTheHwmonFolderWithTheirOwnTypes) {
    AppleKeyFiles files;
    bool isStolen = false;
    SensorMachine machine(
        files.root.root(),
        [&](auto& attribute, auto buffer, const auto& read) {
            const long length = read(attribute, buffer);
            if (isStolen && attribute.path.ends_with("_data")) files.moveTo(0); // somebody else's doing
            return length;
        },
        [&](const auto& path, auto text) { return files.write(path, text); });
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 42.5}}));
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 2000}}));
    EXPECT_EQ(machine.sensors.value("PSTR"), 42);
    EXPECT_TRUE(std::isnan(machine.sensors.value("RBr "))) << "a text";

    isStolen = true;
    machine.pass(1);
    EXPECT_TRUE(std::isnan(machine.sensors.value("TC0P"))) << "data of another key";
    isStolen = false;
    machine.pass(2);
    EXPECT_EQ(machine.sensors.value("TC0P"), 42.5);
}

TEST(AppleKeys, AnOrdinaryUserGetsTheHwmonFolder) {
    AppleKeyFiles files;
    SensorMachine machine(files.root.root());
    EXPECT_EQ(machine.temperatures(), (Readings{{"TC0P", 61}})) << "under the controller's own key";
    EXPECT_EQ(machine.of('F'), (Readings{{"F0Ac", 1800}}));
}

TEST(SensorSupply, PlatformEnergyOverTime) {
    EXPECT_EQ(countedJoules(1'000'000, 3'500'000, 10'000'000), 2.5);
    EXPECT_EQ(countedJoules(9'000'000, 500'000, 10'000'000), 1.5) << "it started anew";
    EXPECT_EQ(countedJoules(9'000'000, 500'000, 0), std::nullopt) << "it was reset";

    TempRoot root;
    const std::string zone = "sys/class/powercap/intel-rapl:1";
    root.files("sys/class/powercap/intel-rapl:0", "name=package-0");
    root.files(zone, "name=psys;energy_uj=5000000;max_energy_range_uj=262143328850");
    SensorMachine machine(root.root());
    EXPECT_TRUE(std::isnan(machine.sensors.value("PSTR"))) << "one reading is no power";
    machine.pass(2);
    root.write(zone + "/energy_uj", "47000000\n");
    EXPECT_NEAR(machine.sensors.value("PSTR"), 21, 1e-4);
}

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

TEST(SensorClass, AttributeNamesAndLimits) {
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
    for (const double none : {-273.15, 65261.85, 0.0})
        EXPECT_FALSE(plausibleLimit(SensorKind::temperature, none));
    EXPECT_EQ(plausibleLimit(SensorKind::fan, 6156), 6156);
}

} // namespace
