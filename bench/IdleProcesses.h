#pragma once

#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quarn::bench {

/// Child processes that sleep for as long as this object lives.
class IdleProcesses {
public:
    explicit IdleProcesses(int count) {
        for (int i = 0; i < count; ++i) {
            const pid_t child = ::fork();
            if (child < 0) throw std::runtime_error("fork failed");
            if (child == 0) {
                ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                std::signal(SIGUSR1, [](int) {});
                for (;;) ::pause();
            }
            children_.push_back(child);
        }
    }
    ~IdleProcesses() {
        for (const pid_t child : children_) ::kill(child, SIGKILL);
        for (const pid_t child : children_) ::waitpid(child, nullptr, 0);
    }
    IdleProcesses(const IdleProcesses&) = delete;
    IdleProcesses& operator=(const IdleProcesses&) = delete;

    /// Makes the first `count` of them run for a moment.
    void poke(int count) const {
        for (int i = 0; i < count && i < static_cast<int>(children_.size()); ++i)
            ::kill(children_[static_cast<size_t>(i)], SIGUSR1);
    }

private:
    std::vector<pid_t> children_;
};

} // namespace quarn::bench
