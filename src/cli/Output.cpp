#include "cli/Output.h"

#include "cli/TerminalText.h"

#include <cerrno>
#include <poll.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace quarn::cli {

void writeOut(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<size_t>(written));
        } else if (errno == EAGAIN) { // somebody left the shared descriptor in non-blocking mode
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno == EPIPE) {
            throw OutputClosed();
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "cannot write the output");
        }
    }
}

void complain(std::string_view message) {
    std::string line = "quarn: ";
    constexpr int longest = 1000;
    line += fitted(message, longest, charsetOfEnvironment());
    line += '\n';
    // Nothing is left to be done when this fails too.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace quarn::cli
