#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The records and codes of the System Management Controller (SMC), whose sensors are named by keys of four
/// characters.
namespace sysinfo {

/// Packs four characters big-endian: "TC0P" is 0x54433050. 0 for a text of any other length.
constexpr uint32_t smcCode(std::string_view text) {
    if (text.size() != 4) return 0;
    uint32_t code = 0;
    for (const char c : text) code = code << 8 | static_cast<uint8_t>(c);
    return code;
}

/// Character `position` (0 to 3) of a packed key or type.
constexpr char smcCharacter(uint32_t code, int position) {
    return static_cast<char>(code >> (24 - 8 * position) & 0xff);
}

/// The four characters of a packed key, NUL-terminated.
constexpr std::array<char, 5> smcText(uint32_t code) {
    return {smcCharacter(code, 0), smcCharacter(code, 1), smcCharacter(code, 2), smcCharacter(code, 3), '\0'};
}

/// What one call exchanges with the controller, in either direction. Laid out by the SMC's driver.
struct SMCParameters {
    uint32_t key = 0;
    uint8_t version[6] = {};
    uint8_t powerLimits[16] = {};
    uint8_t padding0[2] = {};
    uint32_t dataSize = 0; ///< in: bytes to read; out of a key's info: its size
    uint32_t dataType = 0; ///< out of a key's info
    uint8_t dataAttributes = 0;
    uint8_t padding1[3] = {};
    uint8_t result = 0; ///< out: 0 is success
    uint8_t status = 0;
    uint8_t command = 0; ///< one of SMCCommand
    uint8_t padding2 = 0;
    uint32_t data32 = 0;    ///< in: index of a key
    uint8_t bytes[32] = {}; ///< out: the key's data, big-endian but for floats
};
static_assert(sizeof(SMCParameters) == 80);
static_assert(offsetof(SMCParameters, dataSize) == 28 && offsetof(SMCParameters, result) == 40);
static_assert(offsetof(SMCParameters, command) == 42 && offsetof(SMCParameters, bytes) == 48);

enum SMCCommand : uint8_t { smcReadBytes = 5, smcReadIndex = 8, smcReadKeyInfo = 9 };

/// The result byte of a call for a key that is not there, or does not answer.
inline constexpr uint8_t smcKeyNotFound = 0x84;

inline constexpr uint32_t smcFloat = smcCode("flt ");
inline constexpr uint32_t smcKeyCount = smcCode("#KEY");

} // namespace sysinfo
