#include "support/Child.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <time.h>

namespace quarn::testing {

Child::Child(std::function<void(char)> obey) {
    int commands[2], answers[2];
    if (::pipe(commands) != 0 || ::pipe(answers) != 0) throw std::runtime_error("no pipe");
    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("no child");
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::close(commands[1]);
        char letter = 0;
        while (::read(commands[0], &letter, 1) == 1) {
            obey(letter);
            if (::write(answers[1], &letter, 1) != 1) break;
        }
        ::_exit(0);
    }
    ::close(commands[0]);
    ::close(answers[1]);
    commands_ = commands[1];
    answers_ = answers[0];
}

Child::~Child() {
    kill();
    reap();
    ::close(commands_);
    ::close(answers_);
}

void Child::tell(char letter) {
    ASSERT_EQ(::write(commands_, &letter, 1), 1);
    char answer = 0;
    ASSERT_EQ(::read(answers_, &answer, 1), 1);
}

void Child::settle() const {
    const std::string path = "/proc/" + std::to_string(pid_) + "/stat";
    for (;;) {
        std::ifstream file(path);
        const std::string text((std::istreambuf_iterator<char>(file)), {});
        const size_t close = text.rfind(')');
        if (close == std::string::npos || text[close + 2] != 'R') return;
        ::sched_yield();
    }
}

void Child::kill() {
    if (pid_ > 0) ::kill(pid_, SIGKILL);
}

void Child::reap() {
    if (pid_ > 0) ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void burnCpu(long ns) {
    const auto used = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return time.tv_sec * 1'000'000'000L + time.tv_nsec;
    };
    const long end = used() + ns;
    while (used() < end) {
    }
}

} // namespace quarn::testing
