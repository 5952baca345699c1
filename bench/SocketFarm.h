#pragma once

#include <sys/types.h>
#include <vector>

namespace quarn::bench {

/// Child processes that hold loopback sockets for as long as this object lives: pairs of connected TCP
/// sockets, a third of them IPv6, and a tenth UDP sockets.
class SocketFarm {
public:
    /// Returns when all sockets exist. The limit on open files is raised where that is allowed; throws
    /// std::runtime_error when a process still cannot hold its share.
    SocketFarm(int sockets, int processes);
    ~SocketFarm();
    SocketFarm(const SocketFarm&) = delete;
    SocketFarm& operator=(const SocketFarm&) = delete;

private:
    std::vector<pid_t> children_;
};

} // namespace quarn::bench
