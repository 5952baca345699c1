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

/// Negative, 0 or positive, as `a` comes before `b`.
inline int compareIgnoringCase(std::string_view a, std::string_view b) {
    const size_t length = std::min(a.size(), b.size());
    for (size_t i = 0; i < length; ++i)
        if (const char x = lower(a[i]), y = lower(b[i]); x != y)
            return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

} // namespace quarn
