#include "core/CleanText.h"

#include "core/Scan.h"

#include <algorithm>
#include <cstdint>

namespace scutil {

namespace {

/// Bytes of the character at the start of `text`, 0 when its first byte begins none.
size_t utf8Length(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t lead = byte(0);
    if (lead < 0x80) return 1;
    const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80) return 0;
    // Overlong forms, surrogates and what lies beyond the last code point differ in their second byte.
    if ((lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xed && byte(1) > 0x9f)) return 0;
    if ((lead == 0xf0 && byte(1) < 0x90) || (lead == 0xf4 && byte(1) > 0x8f)) return 0;
    return length;
}

/// Controls, and the mark of a character that someone before could not read either.
bool saysNothing(std::string_view character) {
    if (character == "\xef\xbf\xbd") return true;
    const auto lead = static_cast<uint8_t>(character[0]);
    return lead < 0x20 || lead == 0x7f || (lead == 0xc2 && static_cast<uint8_t>(character[1]) < 0xa0);
}

} // namespace

std::string cleanText(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    while (!text.empty()) {
        const size_t length = utf8Length(text);
        if (length > 0 && !saysNothing(text.substr(0, length))) clean += text.substr(0, length);
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return std::string(trimmed(clean));
}

} // namespace scutil
