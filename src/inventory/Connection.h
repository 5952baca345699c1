#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quarn {

/// One row of the list of connections: a socket, ready to be shown. Texts are as the kernel and the process
/// gave them; a surface removes control characters from `processName`.
struct Connection {
    std::string proto;      ///< "TCP" or "UDP"
    std::string local;      ///< address, empty when the socket listens on all
    std::string localPort;  ///< empty without a port
    std::string remote;     ///< address, "*" without a peer
    std::string remotePort; ///< empty without a peer's port
    std::string state;      ///< "ESTABLISHED", "LISTEN", …; empty for UDP
    int64_t pid = 0;        ///< −1 when the process is not known
    std::string processName;
    std::string socketID; ///< empty when the kernel gave none

    /// The same for one row from refresh to refresh, so that a selection stays.
    std::string identity() const;

    /// Equal for the rows that talk to one peer, or that have no peer and share their own end.
    std::string destinationKey() const;

    bool hasPeer() const { return !remote.empty() && remote != "*"; }

    bool operator==(const Connection&) const = default;
};

/// The rows of one process.
struct ConnectionProcess {
    int64_t pid = 0;
    std::string name;
    std::vector<Connection> rows;
};

/// The rows that share a destination, never empty.
struct ConnectionDestination {
    /// Stands for values that differ between the rows.
    static constexpr std::string_view mixed = "mixed";

    std::string key;
    std::vector<Connection> rows;

    bool hasMixedStates() const;
    /// What all rows have in common, or `mixed`.
    std::string state() const;
    std::string local() const;
    std::string localPort() const;
    /// The distinct values of the rows, in their order.
    std::vector<std::string> localAddresses() const;
    std::vector<std::string> localPorts() const;
};

} // namespace quarn
