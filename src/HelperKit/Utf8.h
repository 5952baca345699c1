#pragma once

#include <string>
#include <string_view>

namespace quarn {

/// Whether `text` is well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool isUtf8(std::string_view text);

/// `text` with every ill-formed stretch replaced by one U+FFFD, as web browsers do it; well-formed text is
/// unchanged.
std::string repairedUtf8(std::string_view text);

} // namespace quarn
