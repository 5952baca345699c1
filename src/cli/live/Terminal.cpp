#include "cli/live/Terminal.h"

#include "cli/Output.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace quarn::cli {
namespace {

// Lines do not wrap, so that the last cell of the screen can be written without scrolling it.
constexpr std::string_view enterSequence = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view leaveSequence = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr std::array crashSignals{SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT, SIGSEGV};

// What the crash handler needs; a handler can reach nothing but statics.
termios formerModes;
volatile std::sig_atomic_t entered = 0;

/// Only calls that are safe in a signal handler.
void giveBack() {
    if (entered == 0) return;
    entered = 0;
    // What the terminal still has to say (a late answer) is not for the shell.
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &formerModes);
    [[maybe_unused]] const ssize_t written =
        ::write(STDOUT_FILENO, leaveSequence.data(), leaveSequence.size());
}

void onCrash(int signal) {
    giveBack();
    ::raise(signal); // the handler was taken off when it was called
}

} // namespace

Terminal::Terminal() {
    if (::tcgetattr(STDIN_FILENO, &formerModes) != 0 || ::isatty(STDOUT_FILENO) == 0) {
        throw std::system_error(errno, std::generic_category(), "no terminal");
    }
    for (const int signal : crashSignals) {
        struct sigaction action {};
        action.sa_handler = onCrash;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        ::sigaction(signal, &action, nullptr);
    }
    enter();
}

Terminal::~Terminal() { leave(); }

void Terminal::enter() {
    termios modes = formerModes;
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    modes.c_cc[VMIN] = 1;
    modes.c_cc[VTIME] = 0;
    ::tcsetattr(STDIN_FILENO, TCSADRAIN, &modes);
    entered = 1;
    writeOut(enterSequence);
}

void Terminal::leave() { giveBack(); }

Size Terminal::size() const {
    winsize window{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0)
        return {};
    return {window.ws_col, window.ws_row};
}

} // namespace quarn::cli
