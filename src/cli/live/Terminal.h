#pragma once

#include "cli/view/Canvas.h"

#include <string_view>

namespace quarn::cli {

/// The terminal while the live view owns it: the alternate screen without cursor, keys unechoed and
/// unbuffered (Ctrl-C and Ctrl-Z still send their signals). Whatever ends the program gives the terminal back
/// as it was: the destructor, or, when the program crashes, a signal handler. One at a time.
class Terminal {
public:
    /// Throws std::system_error when standard input or output is no terminal.
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Takes the terminal, and gives it back in between (before the program is suspended).
    void enter();
    void leave();

    /// The size now; 80 × 24 when the terminal does not know it.
    Size size() const;
};

} // namespace quarn::cli
