// with_processes COUNT BUSY COMMAND … : runs a command while COUNT processes sleep beside it, BUSY of which
// wake up every 100 ms and use a little CPU time.
#include "IdleProcesses.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

int main(int count, char** arguments) {
    if (count < 4) {
        std::fputs("usage: with_processes COUNT BUSY COMMAND …\n", stderr);
        return 2;
    }
    const quarn::bench::IdleProcesses processes(std::atoi(arguments[1]));
    const int busy = std::atoi(arguments[2]);
    const pid_t command = ::fork();
    if (command == 0) {
        ::execvp(arguments[3], arguments + 3);
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(command, &status, busy > 0 ? WNOHANG : 0) == 0) {
        processes.poke(busy);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
