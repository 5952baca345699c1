#include "cli/Program.h"

#include "support/TempRoot.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

namespace quarn::testing {
namespace {

[[noreturn]] void become(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{QUARN_PROGRAM};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    ::execv(QUARN_PROGRAM, const_cast<char* const*>(argv.data()));
    ::_exit(127);
}

Outcome endOf(pid_t pid) {
    Outcome outcome;
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
    return outcome;
}

} // namespace

Outcome runProgram(const std::vector<std::string>& arguments, int out) {
    return runProgramIn(TempRoot(), arguments, out);
}

Outcome runProgramIn(const TempRoot& folder, const std::vector<std::string>& arguments, int out) {
    const auto file = [&](const char* name) { return (folder.path() / name).string(); };
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
        ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
        ::dup2(out < 0 ? ::creat(file("out").c_str(), 0600) : out, STDOUT_FILENO);
        ::dup2(::creat(file("err").c_str(), 0600), STDERR_FILENO);
        become(arguments);
    }
    if (out >= 0) ::close(out);
    Outcome outcome = endOf(pid);
    outcome.out = readFile(file("out"));
    outcome.err = readFile(file("err"));
    return outcome;
}

std::string outputOf(const std::vector<std::string>& arguments) {
    const Outcome outcome = runProgram(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

TerminalProgram::TerminalProgram(const std::vector<std::string>& arguments, const char* term) {
    const winsize size{24, 80, 0, 0};
    if (::openpty(&terminal_, &keeper_, nullptr, nullptr, &size) != 0) std::abort();
    pid_ = ::fork();
    if (pid_ == 0) {
        ::close(terminal_);
        ::setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
        ::setenv("XDG_DATA_HOME", "/dev/null/none", 1); // where not even root can make a folder
        ::setenv("LC_ALL", "C.UTF-8", 1);
        ::setenv("TERM", term, 1);
        ::unsetenv("COLORTERM");
        ::unsetenv("NO_COLOR");
        if (::login_tty(keeper_) != 0) ::_exit(126);
        become(arguments);
    }
}

TerminalProgram::~TerminalProgram() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    ::close(terminal_);
    ::close(keeper_);
}

void TerminalProgram::type(std::string_view keys) {
    if (::write(terminal_, keys.data(), keys.size()) < 0) std::abort();
}

void TerminalProgram::resize(int columns, int rows) {
    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    ::ioctl(terminal_, TIOCSWINSZ, &size); // the kernel tells the program
}

/// Waits for output for up to ten seconds; false when there is none.
bool TerminalProgram::readMore() {
    pollfd polled{terminal_, POLLIN, 0};
    if (::poll(&polled, 1, 10'000) != 1) return false;
    std::array<char, 65536> bytes{};
    const ssize_t count = ::read(terminal_, bytes.data(), bytes.size());
    if (count <= 0) return false;
    output_.append(bytes.data(), static_cast<size_t>(count));
    return true;
}

bool TerminalProgram::waitFor(std::string_view text) {
    while (true) {
        const size_t found = output_.find(text, seen_);
        if (found != std::string::npos) {
            seen_ = found + text.size();
            return true;
        }
        if (!readMore()) return false;
    }
}

Outcome TerminalProgram::finish() {
    Outcome outcome = endOf(pid_);
    pid_ = -1;
    for (pollfd polled{terminal_, POLLIN, 0}; ::poll(&polled, 1, 0) == 1 && readMore();) {
    }
    outcome.out = output_;
    return outcome;
}

termios TerminalProgram::modes() const {
    termios modes{};
    ::tcgetattr(keeper_, &modes);
    return modes;
}

} // namespace quarn::testing
