#pragma once

#include "core/UniqueFd.h"
#include "core/linux/SocketTables.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// How far a dump of the kernel has come.
enum class SocketDumpProgress : uint8_t { more, done, failed };

/// Parses one datagram of the answer to the dump request `sequence` for `protocol` and appends its sockets to
/// `out`. Messages of other requests and of other kinds are passed over; a message whose length does not hold
/// ends the dump as failed.
SocketDumpProgress parseSocketDump(std::string_view datagram, uint32_t sequence, uint8_t protocol,
                                   std::vector<SocketEntry>& out);

/// Asks the running kernel for its socket tables (sock_diag): a tenth of the cost of reading them as text,
/// and every socket has a cookie that is never given to another one.
class SocketDiag {
public:
    /// Idle TCP sockets are bound without being used. Kernels from 6.8 on tell of them, at a third of the
    /// cost of a dump.
    enum class Idle : uint8_t { left, included };

    /// Appends the sockets of one table to `out`. False, with nothing appended, when the kernel refuses.
    bool read(SocketTable table, Idle idle, std::vector<SocketEntry>& out);

private:
    bool request(SocketTable table, Idle idle);
    SocketDumpProgress receive(SocketTable table, std::vector<SocketEntry>& out);

    scutil::UniqueFd netlink_;
    uint32_t sequence_ = 0;
    std::vector<char> buffer_;
};

} // namespace sysinfo::platform
