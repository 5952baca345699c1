#pragma once

#include <algorithm>
#include <string_view>

namespace quarn {

/// The lower-case form of an ASCII letter; anything else as it is.
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Whether `part` occurs in `text`, whatever the case of its ASCII letters.
inline bool containsIgnoringCase(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](char a, char b) { return lower(a) == lower(b); }) != text.end();
}

} // namespace quarn
