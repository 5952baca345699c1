#pragma once

#include <cstdlib>
#include <string>

namespace sysinfo {

/// The locale of the user's messages ("de_DE.UTF-8"), by the precedence of POSIX; empty when none is set.
inline std::string messageLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); value && *value) return value;
    return {};
}

} // namespace sysinfo
