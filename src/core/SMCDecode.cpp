#include "core/SMCDecode.h"

#include "core/SMCProtocol.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

namespace sysinfo {

namespace {

uint64_t bigEndian(const uint8_t* bytes, uint32_t size) {
    uint64_t value = 0;
    for (uint32_t i = 0; i < size; ++i) value = value << 8 | bytes[i];
    return value;
}

// A fraction of two bytes is "sp" or "fp" and the hexadecimal numbers of its whole and fraction bits.
std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return {};
}

struct FixedPoint {
    bool isSigned;
    int fractionBits;
};

std::optional<FixedPoint> fixedPoint(uint32_t type) {
    const char sign = smcCharacter(type, 0);
    if ((sign != 's' && sign != 'f') || smcCharacter(type, 1) != 'p') return {};
    const auto fraction = hexDigit(smcCharacter(type, 3));
    if (!hexDigit(smcCharacter(type, 2)) || !fraction) return {};
    return FixedPoint{sign == 's', *fraction};
}

struct NamedType {
    uint32_t type;
    uint32_t size;
    double (*decode)(const uint8_t* bytes);
};

// Floats come in the machine's own byte order, everything else big-endian.
double decodeFloat(const uint8_t* bytes) {
    const auto bits = static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) |
                      static_cast<uint32_t>(bytes[3]) << 24;
    return std::bit_cast<float>(bits);
}

constexpr NamedType namedTypes[] = {
    {smcFloat, 4, decodeFloat},
    {smcCode("ui8 "), 1, [](const uint8_t* b) { return static_cast<double>(b[0]); }},
    {smcCode("si8 "), 1, [](const uint8_t* b) { return static_cast<double>(static_cast<int8_t>(b[0])); }},
    {smcCode("ui16"), 2, [](const uint8_t* b) { return static_cast<double>(bigEndian(b, 2)); }},
    {smcCode("si16"), 2,
     [](const uint8_t* b) { return static_cast<double>(static_cast<int16_t>(bigEndian(b, 2))); }},
    {smcCode("ui32"), 4, [](const uint8_t* b) { return static_cast<double>(bigEndian(b, 4)); }},
    {smcCode("si32"), 4,
     [](const uint8_t* b) { return static_cast<double>(static_cast<int32_t>(bigEndian(b, 4))); }},
    {smcCode("ioft"), 8, [](const uint8_t* b) { return static_cast<double>(bigEndian(b, 8)) / 65536; }},
};

} // namespace

bool decodeSMCNumeric(uint32_t type, uint32_t size, const uint8_t* bytes, double& out) {
    if (!bytes || size < 1 || size > 32) return false;
    for (const NamedType& named : namedTypes) {
        if (named.type != type) continue;
        if (named.size != size) return false;
        const double value = named.decode(bytes);
        if (!std::isfinite(value)) return false;
        out = value;
        return true;
    }
    const auto fixed = fixedPoint(type);
    if (!fixed || size != 2) return false;
    const uint64_t raw = bigEndian(bytes, 2);
    const double units = fixed->isSigned ? static_cast<int16_t>(raw) : static_cast<double>(raw);
    out = std::ldexp(units, -fixed->fractionBits);
    return true;
}

bool isTemperatureKey(uint32_t key) {
    return smcCharacter(key, 0) == 'T' && !(smcCharacter(key, 2) == 'S' && smcCharacter(key, 3) == 'P');
}

bool measurementKey(char kind, uint32_t key, const SMCReading& reading) {
    if (kind != 'F') return reading.type == smcFloat || reading.type == smcCode("sp78");
    const char fan = smcCharacter(key, 1);
    const bool isFan = smcCharacter(key, 0) == 'F' && hexDigit(fan) && !(fan >= 'a' && fan <= 'f') &&
                       smcCharacter(key, 2) == 'A' && smcCharacter(key, 3) == 'c';
    return isFan &&
           (reading.type == smcFloat || reading.type == smcCode("fpe2") || reading.type == smcCode("ui16"));
}

} // namespace sysinfo
