#include "HelperKit/Utf8.h"

#include <cstdint>
#include <cstring>

namespace quarn {

namespace {

struct Sequence {
    size_t length; ///< of the character, or of the stretch that starts like one but is none
    bool wellFormed;
};

size_t expectedLength(uint8_t lead) {
    if (lead < 0xC2 || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// The first character of `text`, which is not empty.
Sequence firstSequence(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) return {1, true};
    const size_t length = expectedLength(lead);
    if (length == 0) return {1, false};
    // Only the second byte has bounds of its own: they keep out overlong forms, surrogates and what is too
    // large.
    uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (size_t i = 1; i < length; ++i) {
        if (i == text.size()) return {i, false};
        const auto byte = static_cast<uint8_t>(text[i]);
        if (byte < low || byte > high) return {i, false};
        low = 0x80, high = 0xBF;
    }
    return {length, true};
}

size_t asciiPrefix(std::string_view text) {
    size_t length = 0;
    for (uint64_t chunk = 0; length + sizeof chunk <= text.size(); length += sizeof chunk) {
        std::memcpy(&chunk, text.data() + length, sizeof chunk);
        if (chunk & 0x8080808080808080U) break;
    }
    while (length < text.size() && static_cast<uint8_t>(text[length]) < 0x80) ++length;
    return length;
}

size_t wellFormedPrefix(std::string_view text) {
    size_t length = asciiPrefix(text);
    while (length < text.size()) {
        const auto next = firstSequence(text.substr(length));
        if (!next.wellFormed) break;
        length += next.length;
    }
    return length;
}

} // namespace

bool isUtf8(std::string_view text) { return wellFormedPrefix(text) == text.size(); }

std::string repairedUtf8(std::string_view text) {
    std::string repaired;
    for (;;) {
        const size_t good = wellFormedPrefix(text);
        repaired.append(text.substr(0, good));
        text.remove_prefix(good);
        if (text.empty()) return repaired;
        repaired.append("\xEF\xBF\xBD");
        text.remove_prefix(firstSequence(text).length);
    }
}

} // namespace quarn
