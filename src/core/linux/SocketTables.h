#pragma once

#include "core/platform.h"

#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// One entry of a kernel socket table: the owner is found by the inode.
struct SocketEntry {
    uint32_t inode = 0; ///< 0 for a socket that no descriptor can hold: closing, or not accepted yet
    KernelSocket socket;
};

/// One of the kernel's tables.
struct SocketTable {
    uint8_t protocol; ///< IPPROTO_TCP or IPPROTO_UDP
    bool isIPv6;
};

/// The kernel's TCP state in BSD numbering, −1 for a number that is none.
int8_t bsdTcpState(unsigned kernelState);

/// Parses the text of proc/net/{tcp,tcp6,udp,udp6} and appends its sockets to `out`. Lines that are cut or
/// are something else are left out. The text of the addresses is in the byte order of the machine that wrote
/// it, which is taken to be that of this one.
void parseSocketTable(std::string_view text, SocketTable table, std::vector<SocketEntry>& out);

/// Whether TCP sockets may exist that are in no table of listening and connected ones: bound without being
/// used, or disconnected. True when the texts (proc/net/sockstat and sockstat6) do not tell.
bool mayHaveIdleTcpSockets(std::string_view sockstat, std::string_view sockstat6);

} // namespace sysinfo::platform
