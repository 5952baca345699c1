#pragma once

#include <sys/types.h>
#include <termios.h>

namespace quarn::testing {

/// How a run of the built program ended.
struct Outcome {
    int status = -1; ///< exit status, −1 when a signal ended it
    int signal = 0;  ///< that signal
    std::string out;
    std::string err;
};

class TempRoot;

/// Runs the program to its end, away from a terminal and with settings and a history of its own. Where its
/// standard output is connected to `out` (closed here), it is not collected.
Outcome runProgram(const std::vector<std::string>& arguments, int out = -1);
/// The same with the settings and the history that `folder` holds.
Outcome runProgramIn(const TempRoot& folder, const std::vector<std::string>& arguments, int out = -1);
/// Runs it where it must succeed without a complaint, and answers what it printed.
std::string outputOf(const std::vector<std::string>& arguments);

/// The program at work in a terminal of its own.
class TerminalProgram {
public:
    /// `term` is its TERM; the terminal has 80 × 24 cells.
    explicit TerminalProgram(const std::vector<std::string>& arguments, const char* term = "xterm-256color");
    ~TerminalProgram();

    pid_t pid() const { return pid_; }
    void type(std::string_view keys);
    void resize(int columns, int rows);
    /// Reads on until the output since the last call holds `text`; false when the program ends before, or
    /// after ten seconds.
    bool waitFor(std::string_view text);
    /// Waits for its end; `out` holds everything it wrote.
    Outcome finish();
    /// How the terminal handles keys and lines now.
    termios modes() const;

private:
    bool readMore();

    pid_t pid_ = -1;
    int terminal_ = -1;
    int keeper_ = -1; ///< keeps the terminal alive after the program's end
    std::string output_;
    size_t seen_ = 0;
};

} // namespace quarn::testing
