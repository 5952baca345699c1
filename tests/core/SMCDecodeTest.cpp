#include "core/SMCDecode.h"

#include "core/SMCProtocol.h"

namespace {

using namespace sysinfo;
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
    const struct {
        char kind;
        const char *key, *type;
        bool measures;
    } cases[] = {
        {'F', "F0Ac", "fpe2", true},  {'F', "FFAc", "ui16", true},  {'F', "F1Ac", "flt ", true},
        {'F', "F0Ac", "sp78", false}, {'F', "FaAc", "fpe2", false}, {'F', "F0Mx", "fpe2", false},
        {'F', "FNum", "ui8 ", false}, {'F', "FGAc", "flt ", false}, {'P', "PC0R", "sp78", true},
        {'V', "VC0C", "flt ", true},  {'V', "VC0C", "sp4b", false}, {'I', "IC0R", "ui16", false},
    };
    for (const auto& one : cases)
        EXPECT_EQ(measurementKey(one.kind, smcCode(one.key), {smcCode(one.type), 1, true}), one.measures)
            << one.key << ' ' << one.type;
}

} // namespace
