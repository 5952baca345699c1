// connections [SOCKETS [RUNS [QUARN]]]: CPU time of `quarn connections` against `ss -tunap` in front of the
// same loopback sockets (20,000 in 4 processes), run in turn, output thrown away; medians and their ratio.
#include "SocketFarm.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// User and system time of one run in milliseconds; ends the program when it cannot be run.
double cpuOf(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (auto& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "%s failed with status %d\n", arguments[0], status);
        std::exit(1);
    }
    const auto ms = [](timeval time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int count, char** arguments) try {
    const int sockets = count > 1 ? std::atoi(arguments[1]) : 20'000;
    const int runs = count > 2 ? std::atoi(arguments[2]) : 15;
    const std::string quarn = count > 3 ? arguments[3] : "build/bin/quarn";
    const quarn::bench::SocketFarm farm(sockets, 4);
    std::vector<double> ours, theirs;
    for (int i = 0; i < runs; ++i) {
        theirs.push_back(cpuOf({"ss", "-tunap"}));
        ours.push_back(cpuOf({quarn, "connections"}));
    }
    std::printf("%d sockets, CPU ms (median of %d): quarn connections %.1f, ss -tunap %.1f, ratio %.2f\n",
                sockets, runs, median(ours), median(theirs), median(ours) / median(theirs));
    std::printf("the first run of each: %.1f, %.1f\n", ours.front(), theirs.front());
} catch (const std::exception& error) {
    std::fprintf(stderr, "connections: %s\n", error.what());
    return 1;
}
