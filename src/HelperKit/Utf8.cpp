#include "HelperKit/Utf8.h"

#include <cstdint>
#include <cstring>

namespace quarn {

namespace {

size_t expectedLength(uint8_t lead) {
    if (lead < 0xC2 || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
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
        const auto next = firstCharacter(text.substr(length));
        if (!next.wellFormed) break;
        length += next.bytes;
    }
    return length;
}

} // namespace

Utf8Character firstCharacter(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) return {lead, 1, true};
    const size_t length = expectedLength(lead);
    if (length == 0) return {};
    // Only the second byte has bounds of its own: they keep out overlong forms, surrogates and what is too
    // large.
    uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t code = lead & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<uint8_t>(i < text.size() ? text[i] : 0);
        if (byte < low || byte > high) return {.bytes = i};
        code = (code << 6) | (byte & 0x3FU);
        low = 0x80, high = 0xBF;
    }
    return {code, length, true};
}

void appendCharacter(std::string& out, char32_t code) {
    const auto put = [&](char32_t byte) { out += static_cast<char>(static_cast<uint8_t>(byte)); };
    const auto continuation = [&](int shift) { put(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) return put(code);
    if (code < 0x800) {
        put(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        continuation(6);
    } else {
        put(0xF0 | (code >> 18));
        continuation(12);
        continuation(6);
    }
    continuation(0);
}

bool isUtf8(std::string_view text) { return wellFormedPrefix(text) == text.size(); }

std::string repairedUtf8(std::string_view text) {
    std::string repaired;
    for (;;) {
        const size_t good = wellFormedPrefix(text);
        repaired.append(text.substr(0, good));
        text.remove_prefix(good);
        if (text.empty()) return repaired;
        appendCharacter(repaired, Utf8Character().code);
        text.remove_prefix(firstCharacter(text).bytes);
    }
}

} // namespace quarn
