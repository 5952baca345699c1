#pragma once

#include "HelperKit/WireRecords.h"
#include "inventory/CapsuleLabel.h"
#include "inventory/Connection.h"
#include "inventory/ConnectionFilter.h"

#include <compare>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarn {

/// What connections can be sorted by.
enum class ConnectionKey { process, pid, proto, local, localPort, remote, remotePort, state };
inline constexpr size_t connectionKeyCount = static_cast<size_t>(ConnectionKey::state) + 1;

/// The logic behind every list of connections: pure, callable from any thread.
struct ConnectionPresentation {
    using ProcessNames = std::unordered_map<int64_t, std::string>; ///< by pid

    /// One row for each record. A process that `names` lacks is called what its record says.
    static std::vector<Connection> connections(const std::vector<SocketRecord>& records,
                                               const ProcessNames& names);
    static Connection connection(const SocketRecord& record, const ProcessNames& names);

    /// True when the connection is within scope and protocol and `query` occurs in its name, addresses, state
    /// (whatever the case of ASCII letters), ports or pid. An empty query accepts all.
    static bool matches(const Connection& connection, ConnectionScope scope, ConnectionProtocol proto,
                        std::string_view query);

    /// Ports and pids order as numbers, addresses by the numbers within them, names without regard to the
    /// case of ASCII letters.
    static std::weak_ordering compare(const Connection& a, const Connection& b, ConnectionKey key);

    /// Rows that are equal by `key` keep their order.
    static std::vector<Connection> sorted(std::vector<Connection> rows, ConnectionKey key, bool ascending);

    /// The rows of each process, sorted; the processes in the order of their first rows.
    static std::vector<ConnectionProcess> grouped(std::vector<Connection> rows, ConnectionKey key,
                                                  bool ascending);
    /// The same by destination.
    static std::vector<ConnectionDestination> groupedByDestination(std::vector<Connection> rows,
                                                                   ConnectionKey key, bool ascending);

    static CapsuleLabel::Tone tone(std::string_view state);

    /// The plain meaning of a state: "closing"; a text that is no TCP state stays as it is.
    static std::string_view stateMeaning(std::string_view state);
    /// The plain meaning of a state first, then its name: "closing (CLOSE_WAIT)". A text that is no TCP state
    /// stays as it is.
    static std::string stateText(std::string_view state);

    /// Whether an address is of this machine or of a private network.
    static bool isLocalPeer(std::string_view address);
};

} // namespace quarn
