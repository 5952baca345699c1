#pragma once

#include <string_view>

namespace quarn {

/// Logs the exception being handled as "<label>: <what it says>". Only to be called in a catch block.
void logEscapedException(std::string_view label);

/// Runs `work` at the edge of a queue or a loop: an exception that escapes from it is logged, and life goes
/// on.
template <class Work>
void runGuarded(std::string_view label, Work& work) {
    try {
        work();
    } catch (...) {
        logEscapedException(label);
    }
}

} // namespace quarn
