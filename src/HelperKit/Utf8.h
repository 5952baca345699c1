#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quarn {

/// Whether `text` is well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool isUtf8(std::string_view text);

/// `text` with every ill-formed stretch replaced by one U+FFFD, as web browsers do it; well-formed text is
/// unchanged.
std::string repairedUtf8(std::string_view text);

/// One character of a text.
struct Utf8Character {
    char32_t code = 0xFFFD; ///< U+FFFD where the bytes are no well-formed character
    size_t bytes = 1;       ///< how many bytes it takes, at least 1
    bool wellFormed = false;
};
/// The first character of `text`, which must not be empty. Of an ill-formed sequence the stretch that could
/// have begun a character is taken as one.
Utf8Character firstCharacter(std::string_view text);

/// Appends a Unicode scalar value.
void appendCharacter(std::string& out, char32_t code);

} // namespace quarn
