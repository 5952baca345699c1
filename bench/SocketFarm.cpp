#include "SocketFarm.h"

#include <arpa/inet.h>
#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarn::bench {

namespace {

void raiseFileLimit(rlim_t wanted) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur >= wanted) return;
    const rlimit raised{wanted, std::max(wanted, limit.rlim_max)};
    if (::setrlimit(RLIMIT_NOFILE, &raised) == 0) return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

bool openUdp(int count) {
    while (count-- > 0) {
        sockaddr_in any{};
        any.sin_family = AF_INET;
        const int udp = ::socket(AF_INET, SOCK_DGRAM, 0);
        if (udp < 0 || ::bind(udp, reinterpret_cast<sockaddr*>(&any), sizeof any) != 0) return false;
    }
    return true;
}

/// One listening socket and as many connected pairs as fit into `count`.
template <class Address>
bool openTcp(Address address, int count) {
    auto* plain = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    const int listening = ::socket(plain->sa_family, SOCK_STREAM, 0);
    if (::bind(listening, plain, length) != 0 || ::listen(listening, 16) != 0) return false;
    ::getsockname(listening, plain, &length);
    for (--count; count > 1; count -= 2) {
        const int client = ::socket(plain->sa_family, SOCK_STREAM, 0);
        const linger reset{1, 0}; // so that nothing of them is left afterwards
        ::setsockopt(client, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        if (::connect(client, plain, length) != 0 || ::accept(listening, nullptr, nullptr) < 0) return false;
    }
    return true;
}

bool openAll(int count) {
    sockaddr_in v4{};
    v4.sin_family = AF_INET;
    v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in6 v6{};
    v6.sin6_family = AF_INET6;
    v6.sin6_addr = in6addr_loopback;
    return openUdp(count / 10) && openTcp(v6, count / 3) && openTcp(v4, count - count / 10 - count / 3);
}

} // namespace

SocketFarm::SocketFarm(int sockets, int processes) {
    int ready[2];
    if (::pipe(ready) != 0) throw std::runtime_error("no pipe");
    for (int i = 0; i < processes; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            raiseFileLimit(static_cast<rlim_t>(sockets / processes) + 64);
            const char result = openAll(sockets / processes) ? 'y' : 'n';
            if (::write(ready[1], &result, 1) != 1) ::_exit(1);
            for (;;) ::pause();
        }
        children_.push_back(child);
    }
    bool complete = true;
    for (int i = 0; i < processes; ++i) {
        char result = 'n';
        complete = ::read(ready[0], &result, 1) == 1 && result == 'y' && complete;
    }
    ::close(ready[0]);
    ::close(ready[1]);
    if (!complete) throw std::runtime_error("the sockets could not all be opened; raise `ulimit -n`");
}

SocketFarm::~SocketFarm() {
    for (const pid_t child : children_) ::kill(child, SIGKILL);
    for (const pid_t child : children_) ::waitpid(child, nullptr, 0);
}

} // namespace quarn::bench
