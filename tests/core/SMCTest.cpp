// Values as the controller encodes them, and the rules on top: enumeration, caches, filters and limits.
#include "core/SMC.h"
#include "SensorSupport.h"
#include "core/SMCDecode.h"

#include <cmath>
#include <cstring>

namespace {

using namespace quarn::testing;

constexpr double none = -12345;

/// The value of bytes in hexadecimal digits; `none` when they have none.
double decoded(std::string_view type, std::string_view digits) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
    double value = none;
    const bool ok = decodeSMCNumeric(smcCode(type), static_cast<uint32_t>(bytes.size()), bytes.data(), value);
    EXPECT_EQ(ok, value != none) << "a failure leaves the value alone";
    return value;
}

// Floats are little-endian, unlike everything else. The number of fraction bits comes last in a name of fixed
// point, in either case of letters, after that of whole bits, which must be a digit too; "fp" has no sign.
TEST(SMCDecode, EveryType) {
    const struct {
        const char *type, *bytes;
        double value;
    } cases[] = {{"flt ", "00002842", 42.0}, {"flt ", "0000807f", none}, {"flt ", "0000c07f", none},
                 {"flt ", "0000", none},     {"ui8 ", "ff", 255},        {"si8 ", "ff", -1},
                 {"ui8 ", "0001", none},     {"ui8 ", "", none},         {"ui16", "1234", 0x1234},
                 {"si16", "fffe", -2},       {"si32", "fffffffd", -3},   {"ui32", "000001", none},
                 {"ioft", "2a800000", none}, {"sp78", "2a80", 42.5},     {"sp78", "ff00", -1.0},
                 {"sp78", "2a8000", none},   {"sp4b", "0800", 1.0},      {"sp4B", "0800", 1.0},
                 {"spf0", "8000", -32768},   {"fpe2", "1f40", 2000.0},   {"fpe2", "ffff", 16383.75},
                 {"fpff", "8000", 1.0},      {"spG8", "2a80", none},     {"sp7g", "2a80", none},
                 {"xp78", "2a80", none},     {"ch8*", "6162", none},     {"flag", "01", none}};
    for (const auto& one : cases) EXPECT_EQ(decoded(one.type, one.bytes), one.value) << one.type << one.bytes;
    EXPECT_EQ(decoded("ui32", "80000001"), 2147483649.0);
    EXPECT_EQ(decoded("ioft", "00000000002a8000"), 42.5);
    double out = 0;
    EXPECT_FALSE(decodeSMCNumeric(smcCode("ui8 "), 1, nullptr, out));
    EXPECT_EQ(decoded("ui8 ", std::string(66, '1')), none);
}

TEST(SMCDecode, WhatAKeyMeasures) {
    EXPECT_EQ(smcCode("TC0P"), 0x54433050u);
    EXPECT_EQ(smcCode("TC0"), 0u);
    for (const char* key : {"TC0P", "TCSX", "TCxP"}) EXPECT_TRUE(isTemperatureKey(smcCode(key))) << key;
    for (const char* key : {"TCSP", "tC0P"}) EXPECT_FALSE(isTemperatureKey(smcCode(key))) << key;
    const auto measures = [](const char* key, const char* type) {
        return measurementKey(key[0], smcCode(key), {smcCode(type), 1, true});
    };
    EXPECT_TRUE(measures("F0Ac", "fpe2") && measures("FFAc", "ui16") && measures("F1Ac", "flt "));
    EXPECT_TRUE(measures("PC0R", "sp78") && measures("VC0C", "flt "));
    EXPECT_FALSE(measures("F0Ac", "sp78") || measures("FaAc", "fpe2") || measures("F0Mx", "fpe2"));
    EXPECT_FALSE(measures("FNum", "ui8 ") || measures("FGAc", "flt "));
    EXPECT_FALSE(measures("VC0C", "sp4b") || measures("IC0R", "ui16"));
}

/// A controller whose keys and values a test sets.
struct FakeController final : SMCConnection {
    struct Key {
        std::string name, type;
        std::vector<uint8_t> bytes;
    };

    bool call(const SMCParameters& in, SMCParameters& out) override {
        ++calls[in.command];
        if (isDead) return false;
        if (in.command == smcReadIndex) {
            out.result = static_cast<int>(in.data32) == refusedIndex ? 1 : 0;
            if (in.data32 < keys.size()) out.key = smcCode(keys[in.data32].name);
            return true;
        }
        const Key count{"#KEY", "ui32", {0, 0, 0, static_cast<uint8_t>(keys.size())}};
        const Key* key = in.key == smcKeyCount ? &count : find(in.key);
        if (!key) {
            out.result = smcKeyNotFound;
        } else if (in.command == smcReadKeyInfo) {
            out.dataSize = static_cast<uint32_t>(key->bytes.size());
            out.dataType = smcCode(key->type);
        } else {
            EXPECT_EQ(in.dataSize, key->bytes.size()) << "a read asks for the size of the key";
            std::copy_n(key->bytes.begin(), std::min<size_t>(32, key->bytes.size()), out.bytes);
        }
        return true;
    }
    Key* find(uint32_t code) {
        for (auto& key : keys)
            if (smcCode(key.name) == code) return &key;
        return nullptr;
    }

    std::vector<Key> keys;
    std::map<int, int> calls; ///< by command
    int refusedIndex = -1;
    bool isDead = false;
};

struct SMCRules : ::testing::Test {
    FakeController* const fake = new FakeController;
    SMC smc{std::unique_ptr<SMCConnection>(fake)};
    SMCSensors sensors{smc};

    void set(std::initializer_list<std::pair<const char*, float>> values) {
        for (const auto& [name, value] : values) {
            if (!fake->find(smcCode(name))) fake->keys.push_back({name, "flt ", std::vector<uint8_t>(4)});
            std::memcpy(fake->find(smcCode(name))->bytes.data(), &value, sizeof value);
        }
    }
    Readings of(char kind, int max = 64) {
        SCSensor out[64];
        return asMap(out, kind == 'T' ? sensors.temps(out, max) : sensors.keys(kind, out, max));
    }
    Readings temperatures() { return of('T'); }
};

TEST_F(SMCRules, InformationOfAKeyIsAskedForOnce) {
    set({{"TC0P", 50}});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(smc.read(smcCode("TC0P")).value, 50);
    EXPECT_EQ(fake->calls[smcReadKeyInfo], 1);
    EXPECT_EQ(fake->calls[smcReadBytes], 3);
}

TEST_F(SMCRules, KeysAreEnumeratedOnceAndAppended) {
    set({{"TC0P", 50}, {"TB0T", 30}, {"TW0P", 40}});
    fake->refusedIndex = 1;
    EXPECT_EQ(smc.keys(), (std::vector{smcCode("TC0P"), smcCode("TW0P")}))
        << "an index that fails is passed over";
    fake->refusedIndex = -1;
    EXPECT_EQ(smc.keys().size(), 2u);
    EXPECT_EQ(fake->calls[smcReadIndex], 3) << "known indices are not asked for again";
    set({{"TA0P", 25}});
    EXPECT_EQ(smc.keys(2), std::vector{smcCode("TA0P")});
}

TEST_F(SMCRules, ATemperatureIsJudgedWhenItIsFirstSeen) {
    // Two placeholders, beyond what is likely at first, and a set point are not taken.
    set({{"TC0P", 5}, {"TC1P", 125}, {"TDed", 3}, {"THot", 126}, {"TCSP", 60}});
    fake->keys.push_back({"TSpx", "sp78", {0x2a, 0x80}});
    fake->keys.push_back({"TUi8", "ui8 ", {40}});
    EXPECT_EQ(temperatures(), (Readings{{"TC0P", 5}, {"TC1P", 125}, {"TSpx", 42.5}}));

    set({{"TDed", 50}, {"THot", 50}, {"TC0P", 131}, {"TC1P", -0.5F}});
    fake->calls.clear();
    EXPECT_EQ(temperatures(), (Readings{{"TSpx", 42.5}})) << "dropped for good, or implausible now";
    EXPECT_EQ(fake->calls[smcReadBytes], 4) << "the number of keys and the three kept ones";
    set({{"TC0P", 130}, {"TC1P", 0}, {"TNew", 33}});
    EXPECT_EQ(temperatures(), (Readings{{"TC0P", 130}, {"TC1P", 0}, {"TNew", 33}, {"TSpx", 42.5}}));
    EXPECT_EQ(of('T', 2).size(), 2u);
}

TEST_F(SMCRules, LimitsByKind) {
    set({{"F0Ac", 1200}, {"F1Ac", 15000}, {"F2Ac", 20000}, {"F3Ac", -1}, {"F4Ac", 0}, {"F0Mx", 6000}});
    set({{"PC0R", -2.5F}, {"PC1R", NAN}, {"VC0C", 1.25F}, {"IC0R", 0}, {"Xabc", 7}});
    EXPECT_EQ(of('F'), (Readings{{"F0Ac", 1200}, {"F1Ac", 15000}, {"F4Ac", 0}})) << "F0Mx is a bound";
    EXPECT_EQ(of('P'), (Readings{{"PC0R", -2.5}})) << "power may flow either way";
    EXPECT_EQ(of('V'), (Readings{{"VC0C", 1.25}}));
    EXPECT_EQ(of('I'), (Readings{{"IC0R", 0}}));
    EXPECT_EQ(of('X'), (Readings{{"Xabc", 7}})) << "any other kind is looked for each time";
}

TEST_F(SMCRules, ACacheIsBuiltWithoutARoomForResults) {
    set({{"PC0R", 1}});
    EXPECT_EQ(sensors.keys('P', nullptr, 8), 0);
    fake->keys.front().type = "ui8 "; // would no longer pass
    fake->calls.clear();
    SCSensor out[1];
    EXPECT_EQ(sensors.keys('P', out, 0), 0);
    EXPECT_EQ(fake->calls[smcReadKeyInfo], 0) << "nothing was judged anew";
}

TEST_F(SMCRules, OneValue) {
    set({{"PSTR", 12.5F}});
    EXPECT_EQ(sensors.value("PSTR"), 12.5);
    fake->calls.clear();
    for (const char* wrong : {"PST", "PSTRx", ""}) EXPECT_TRUE(std::isnan(sensors.value(wrong)));
    EXPECT_TRUE(std::isnan(sensors.value(nullptr)));
    EXPECT_TRUE(fake->calls.empty()) << "a key of another length never reaches the controller";
    EXPECT_TRUE(std::isnan(sensors.value("none")));
    fake->keys.push_back({"long", "ui8 ", std::vector<uint8_t>(33)});
    EXPECT_TRUE(std::isnan(sensors.value("long")));
}

TEST_F(SMCRules, WithoutAControllerThereIsNothing) {
    SMC absent{std::unique_ptr<SMCConnection>()};
    SMCSensors nothing(absent);
    SCSensor out[4];
    EXPECT_EQ(nothing.temps(out, 4), 0);
    EXPECT_EQ(nothing.keys('F', out, 4), 0);
    EXPECT_TRUE(absent.keys().empty());
    EXPECT_TRUE(std::isnan(nothing.value("PSTR")));

    set({{"TC0P", 50}});
    fake->isDead = true;
    EXPECT_TRUE(temperatures().empty());
    fake->isDead = false;
    EXPECT_EQ(temperatures().size(), 1u) << "a controller that answers later is enumerated then";
    EXPECT_EQ(sensors.temps(nullptr, 4), 0);
}

} // namespace
