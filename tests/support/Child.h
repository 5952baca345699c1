#pragma once

#include <csignal>
#include <functional>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarn::testing {

/// Waits until a process sleeps, so that it uses no more CPU time.
void settle(pid_t pid);

/// A real child process that obeys commands over a channel, one letter each, and confirms each one. So a test
/// knows what the child has done without waiting any length of time.
class Child {
public:
    /// `obey` runs in the child for each letter; the child ends when the channel closes or it is killed.
    explicit Child(std::function<void(char)> obey = [](char) {});
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }
    /// Sends a letter and returns once the child has carried it out.
    void tell(char letter);
    /// Waits until the child sleeps in its next read.
    void settle() const { testing::settle(pid_); }
    void kill(); ///< SIGKILL; the child stays a zombie
    void reap(); ///< collects the zombie

private:
    pid_t pid_ = -1;
    int channel_ = -1;
};

/// Uses at least `ns` nanoseconds of CPU time on the calling thread.
void burnCpu(long ns);

} // namespace quarn::testing
