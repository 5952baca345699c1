#include "inventory/Connection.h"

#include <algorithm>
#include <initializer_list>

namespace quarn {

namespace {

/// Occurs in no address, port or name of a protocol.
constexpr char separator = 31;

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string result;
    for (const auto part : parts) {
        if (!result.empty()) result += separator;
        result += part;
    }
    return result;
}

std::vector<std::string> distinct(const std::vector<Connection>& rows, std::string Connection::*field) {
    std::vector<std::string> values;
    for (const auto& row : rows)
        if (std::find(values.begin(), values.end(), row.*field) == values.end()) values.push_back(row.*field);
    return values;
}

std::string common(const std::vector<Connection>& rows, std::string Connection::*field) {
    const auto& first = rows.front().*field;
    const bool same =
        std::all_of(rows.begin(), rows.end(), [&](const Connection& row) { return row.*field == first; });
    return same ? first : std::string(ConnectionDestination::mixed);
}

} // namespace

std::string Connection::identity() const {
    const auto owner = std::to_string(pid);
    if (!socketID.empty()) return joined({owner, socketID});
    return joined({owner, proto, local, localPort, remote, remotePort});
}

std::string Connection::destinationKey() const {
    return hasPeer() ? joined({"remote", remote, remotePort}) : joined({"local", local, localPort});
}

bool ConnectionDestination::hasMixedStates() const {
    return std::any_of(rows.begin(), rows.end(),
                       [&](const Connection& row) { return row.state != rows.front().state; });
}

std::string ConnectionDestination::state() const { return common(rows, &Connection::state); }
std::string ConnectionDestination::local() const { return common(rows, &Connection::local); }
std::string ConnectionDestination::localPort() const { return common(rows, &Connection::localPort); }

std::vector<std::string> ConnectionDestination::localAddresses() const {
    return distinct(rows, &Connection::local);
}
std::vector<std::string> ConnectionDestination::localPorts() const {
    return distinct(rows, &Connection::localPort);
}

} // namespace quarn
