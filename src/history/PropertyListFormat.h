#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The layout of a binary property list: the magic; the objects, each a marker and what belongs to it; a
/// table with the offset of each object; a trailer of 32 bytes. All numbers are big-endian. A marker holds
/// the kind in its upper half and the count (of an integer or real: the exponent of its width) in its lower
/// one, or 15 where the count follows as an integer. Arrays and dictionaries hold the numbers of objects.
namespace quarn::propertyList {

inline constexpr std::string_view magic = "bplist00";

inline constexpr uint8_t integerKind = 0x10;
inline constexpr uint8_t realKind = 0x20;
inline constexpr uint8_t asciiKind = 0x50;
inline constexpr uint8_t utf16Kind = 0x60;
inline constexpr uint8_t arrayKind = 0xA0;
inline constexpr uint8_t dictionaryKind = 0xD0;
inline constexpr uint8_t countFollows = 0x0F;

inline constexpr size_t trailerSize = 32;
inline constexpr size_t trailerUnused = 6; ///< bytes at its begin

} // namespace quarn::propertyList
