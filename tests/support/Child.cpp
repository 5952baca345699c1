#include "support/Child.h"

#include "support/TempRoot.h"

#include <sched.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <time.h>

namespace quarn::testing {

Child::Child(std::function<void(char)> obey) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) throw std::runtime_error("no channel");
    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("no child");
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::close(ends[0]);
        char letter = 0;
        while (::read(ends[1], &letter, 1) == 1) {
            obey(letter);
            if (::write(ends[1], &letter, 1) != 1) break;
        }
        ::_exit(0);
    }
    ::close(ends[1]);
    channel_ = ends[0];
}

Child::~Child() {
    kill();
    reap();
    ::close(channel_);
}

void Child::tell(char letter) {
    ASSERT_EQ(::write(channel_, &letter, 1), 1);
    char answer = 0;
    ASSERT_EQ(::read(channel_, &answer, 1), 1);
}

void settle(pid_t pid) {
    const std::string path = "/proc/" + std::to_string(pid) + "/stat";
    for (;;) {
        const std::string text = readFile(path);
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
