#pragma once

#include <string>
#include <string_view>

namespace scutil {

/// `text` as the firmware or a driver wrote it, made fit to show: trimmed, without control characters and
/// without bytes that are no UTF-8. Some batteries and boards fill their names with both.
std::string cleanText(std::string_view text);

} // namespace scutil
