#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

/// Small total scanners for kernel text. None allocates, throws or reads past the end.
namespace scutil {

/// Takes the part up to `delimiter` off the front of `rest`; the delimiter is consumed.
inline std::string_view takeUntil(std::string_view& rest, char delimiter) {
    const size_t end = rest.find(delimiter);
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return part;
}

inline std::string_view takeLine(std::string_view& rest) { return takeUntil(rest, '\n'); }

inline bool isBlank(char c) { return c == ' ' || c == '\t'; }
inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes the next word (separated by blanks and tabs) off the front of `rest`; empty at the end.
inline std::string_view takeWord(std::string_view& rest) {
    while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
    size_t end = 0;
    while (end < rest.size() && !isBlank(rest[end])) ++end;
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
}

/// The whole of `text` as a number; nullopt when it is anything else or out of range. `base` is for integers.
template <class Number>
std::optional<Number> toNumber(std::string_view text, [[maybe_unused]] int base = 10) {
    Number value{};
    const char* end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>)
        result = std::from_chars(text.data(), end, value);
    else
        result = std::from_chars(text.data(), end, value, base);
    if (text.empty() || result.ec != std::errc() || result.ptr != end) return {};
    return value;
}

/// The next word of `rest` as an unsigned number, 0 when it is none.
inline uint64_t takeNumber(std::string_view& rest) { return toNumber<uint64_t>(takeWord(rest)).value_or(0); }

/// `text` without blanks, tabs, line ends and NULs at either end.
inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank(" \t\r\n\0", 5);
    const size_t first = text.find_first_not_of(blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

} // namespace scutil
