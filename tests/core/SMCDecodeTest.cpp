#include "core/SMCDecode.h"

#include "core/SMCProtocol.h"

#include <cmath>
#include <limits>

namespace {

using namespace sysinfo;
using Bytes = std::vector<uint8_t>;

std::optional<double> decoded(std::string_view type, const Bytes& bytes) {
    double value = -12345;
    const bool ok = decodeSMCNumeric(smcCode(type), static_cast<uint32_t>(bytes.size()), bytes.data(), value);
    EXPECT_TRUE(ok || value == -12345) << "a failure leaves the value alone";
    return ok ? std::optional(value) : std::nullopt;
}

TEST(SMCDecode, EveryType) {
    struct Case {
        const char* type;
        Bytes bytes;
        std::optional<double> value;
    };
    const Case cases[] = {
        {"flt ", {0x00, 0x00, 0x28, 0x42}, 42.0}, // little-endian, unlike everything else
        {"flt ", {0x00, 0x00, 0x80, 0x7f}, {}},   // infinite
        {"flt ", {0x00, 0x00, 0xc0, 0x7f}, {}},   // not a number
        {"flt ", {0x00, 0x00}, {}},
        {"ui8 ", {0xff}, 255},
        {"si8 ", {0xff}, -1},
        {"ui8 ", {0, 1}, {}},
        {"ui16", {0x12, 0x34}, 0x1234},
        {"si16", {0xff, 0xfe}, -2},
        {"ui32", {0x80, 0, 0, 1}, 2147483649.0},
        {"si32", {0xff, 0xff, 0xff, 0xfd}, -3},
        {"ui32", {0, 0, 1}, {}},
        {"ioft", {0, 0, 0, 0, 0, 0x2a, 0x80, 0}, 42.5},
        {"ioft", {0x2a, 0x80, 0, 0}, {}},
        {"sp78", {0x2a, 0x80}, 42.5},
        {"sp78", {0xff, 0x00}, -1.0},
        {"sp78", {0x2a, 0x80, 0}, {}},
        {"sp4b", {0x08, 0x00}, 1.0}, // 11 fraction bits, in either case of letters
        {"sp4B", {0x08, 0x00}, 1.0},
        {"spf0", {0x80, 0x00}, -32768},
        {"fpe2", {0x1f, 0x40}, 2000.0},
        {"fpe2", {0xff, 0xff}, 16383.75}, // unsigned
        {"fpff", {0x80, 0x00}, 1.0},
        {"spG8", {0x2a, 0x80}, {}}, // whole bits must be a digit too, though they do not enter the value
        {"sp7g", {0x2a, 0x80}, {}},
        {"xp78", {0x2a, 0x80}, {}},
        {"ch8*", {'a', 'b'}, {}},
        {"flag", {1}, {}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(decoded(one.type, one.bytes), one.value) << one.type << " of " << one.bytes.size();
    }
}

TEST(SMCDecode, SizesAndPointersOutOfBounds) {
    const Bytes bytes(64, 1);
    double out = 0;
    EXPECT_FALSE(decodeSMCNumeric(smcCode("ui8 "), 1, nullptr, out));
    EXPECT_FALSE(decodeSMCNumeric(smcCode("ui8 "), 0, bytes.data(), out));
    EXPECT_FALSE(decodeSMCNumeric(smcCode("ui8 "), 33, bytes.data(), out));
}

TEST(SMCDecode, WhatAKeyMeasures) {
    EXPECT_EQ(smcCode("TC0P"), 0x54433050u);
    EXPECT_EQ(smcCode("TC0"), 0u);
    for (const auto& [key, isTemperature] :
         {std::pair{"TC0P", true}, {"TCSP", false}, {"TCSX", true}, {"TCxP", true}, {"tC0P", false}}) {
        EXPECT_EQ(isTemperatureKey(smcCode(key)), isTemperature) << key;
    }
    struct Case {
        char kind;
        const char* key;
        const char* type;
        bool measures;
    };
    const Case cases[] = {
        {'F', "F0Ac", "fpe2", true},  {'F', "FFAc", "ui16", true},  {'F', "F1Ac", "flt ", true},
        {'F', "F0Ac", "sp78", false}, {'F', "FaAc", "fpe2", false}, {'F', "F0Mx", "fpe2", false},
        {'F', "FNum", "ui8 ", false}, {'F', "FGAc", "flt ", false}, {'P', "PC0R", "sp78", true},
        {'V', "VC0C", "flt ", true},  {'V', "VC0C", "sp4b", false}, {'I', "IC0R", "ui16", false},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(measurementKey(one.kind, smcCode(one.key), {smcCode(one.type), 1, true}), one.measures)
            << one.key << ' ' << one.type;
    }
}

} // namespace
