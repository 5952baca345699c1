#include "inventory/ConnectionPresentation.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>
#include <netinet/in.h>
#include <optional>

namespace quarn {

namespace {

using Tone = CapsuleLabel::Tone;

struct TcpState {
    std::string_view name;
    std::string_view meaning;
    Tone tone;
};

/// By the numbers that records carry.
constexpr std::array tcpStates{
    TcpState{"CLOSED", "closed", Tone::neutral},       TcpState{"LISTEN", "listening", Tone::info},
    TcpState{"SYN_SENT", "connecting", Tone::neutral}, TcpState{"SYN_RECEIVED", "accepting", Tone::neutral},
    TcpState{"ESTABLISHED", "connected", Tone::ok},    TcpState{"CLOSE_WAIT", "closing", Tone::warn},
    TcpState{"FIN_WAIT_1", "closing", Tone::warn},     TcpState{"CLOSING", "closing", Tone::warn},
    TcpState{"LAST_ACK", "closing", Tone::warn},       TcpState{"FIN_WAIT_2", "closing", Tone::warn},
    TcpState{"TIME_WAIT", "just closed", Tone::warn},
};

const TcpState* find(std::string_view state) {
    const auto found = std::find_if(tcpStates.begin(), tcpStates.end(),
                                    [&](const TcpState& each) { return each.name == state; });
    return found == tcpStates.end() ? nullptr : &*found;
}

std::string portText(int64_t port) { return port > 0 ? std::to_string(port) : std::string(); }

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool containsIgnoringCase(std::string_view text, std::string_view query) {
    const auto same = [](char a, char b) { return lower(a) == lower(b); };
    return std::search(text.begin(), text.end(), query.begin(), query.end(), same) != text.end();
}

std::weak_ordering compareIgnoringCase(std::string_view a, std::string_view b) {
    if (a == b) return std::weak_ordering::equivalent;
    const auto order = [](char x, char y) { return lower(x) <=> lower(y); };
    return std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end(), order);
}

/// Numbers of any length, without leading zeros; the empty text comes first.
std::weak_ordering compareNumbers(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? a.size() <=> b.size() : a <=> b;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view takeDigits(std::string_view& text) {
    size_t length = 0;
    while (length < text.size() && isDigit(text[length])) ++length;
    const auto digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

/// "10.0.0.9" before "10.0.0.10": runs of digits compare as numbers.
std::weak_ordering compareAddresses(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        const bool numbers = isDigit(a.front()) && isDigit(b.front());
        const auto order = numbers ? compareNumbers(takeDigits(a), takeDigits(b)) : a.front() <=> b.front();
        if (order != 0) return order;
        if (numbers) continue;
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.size() <=> b.size();
}

std::optional<std::array<uint8_t, 4>> parseIPv4(std::string_view text) {
    std::array<uint8_t, 4> bytes{};
    for (size_t i = 0; i < bytes.size(); ++i) {
        const bool last = i + 1 == bytes.size();
        if (!last && text.find('.') == std::string_view::npos) return {};
        const auto byte = scutil::toNumber<uint8_t>(last ? text : scutil::takeUntil(text, '.'));
        if (!byte) return {};
        bytes[i] = *byte;
    }
    return bytes;
}

bool isPrivateIPv4(std::string_view text) {
    const auto address = parseIPv4(text);
    if (!address) return false;
    const auto [a, b, c, d] = *address;
    return a == 10 || a == 127 || (a == 169 && b == 254) || (a == 172 && b >= 16 && b <= 31) ||
           (a == 192 && b == 168);
}

bool isInScope(const Connection& connection, ConnectionScope scope) {
    switch (scope) {
    case ConnectionScope::internet:
        return connection.hasPeer() && !ConnectionPresentation::isLocalPeer(connection.remote);
    case ConnectionScope::listening: return connection.state == "LISTEN";
    case ConnectionScope::localNetwork:
        return connection.hasPeer() && ConnectionPresentation::isLocalPeer(connection.remote);
    default: return true;
    }
}

/// Rows of one `keyOf` together, groups in the order of their first row after sorting.
template <class Group, class KeyOf, class Start>
std::vector<Group> groupedBy(std::vector<Connection> rows, ConnectionKey key, bool ascending, KeyOf keyOf,
                             Start start) {
    std::vector<Group> groups;
    std::unordered_map<decltype(keyOf(rows.front())), size_t> indices;
    for (auto& row : rows) {
        const auto [at, isNew] = indices.try_emplace(keyOf(row), groups.size());
        if (isNew) groups.push_back(start(row));
        groups[at->second].rows.push_back(std::move(row));
    }
    for (auto& group : groups)
        group.rows = ConnectionPresentation::sorted(std::move(group.rows), key, ascending);
    std::stable_sort(groups.begin(), groups.end(), [&](const Group& a, const Group& b) {
        const auto order = ConnectionPresentation::compare(a.rows.front(), b.rows.front(), key);
        return ascending ? order < 0 : order > 0;
    });
    return groups;
}

} // namespace

std::vector<Connection> ConnectionPresentation::connections(const std::vector<SocketRecord>& records,
                                                            const ProcessNames& names) {
    std::vector<Connection> rows;
    rows.reserve(records.size());
    for (const auto& record : records) rows.push_back(connection(record, names));
    return rows;
}

Connection ConnectionPresentation::connection(const SocketRecord& record, const ProcessNames& names) {
    Connection row;
    const bool isTcp = record.proto == IPPROTO_TCP;
    row.proto = isTcp ? "TCP" : "UDP";
    row.local = record.local;
    row.localPort = portText(record.localPort);
    row.remote = record.remote.value_or("*");
    row.remotePort = portText(record.remotePort);
    if (isTcp && record.tcpState >= 0 && record.tcpState < static_cast<int64_t>(tcpStates.size()))
        row.state = tcpStates[static_cast<size_t>(record.tcpState)].name;
    row.pid = record.pid;
    const auto name = names.find(record.pid);
    row.processName = name == names.end() ? record.name : name->second;
    if (record.socketID != 0) row.socketID = std::to_string(record.socketID);
    return row;
}

bool ConnectionPresentation::matches(const Connection& connection, ConnectionScope scope,
                                     ConnectionProtocol proto, std::string_view query) {
    if (proto == ConnectionProtocol::tcp && !connection.proto.starts_with("TCP")) return false;
    if (proto == ConnectionProtocol::udp && !connection.proto.starts_with("UDP")) return false;
    if (!isInScope(connection, scope)) return false;
    if (query.empty()) return true;
    return containsIgnoringCase(connection.processName, query) ||
           containsIgnoringCase(connection.local, query) || containsIgnoringCase(connection.remote, query) ||
           containsIgnoringCase(connection.state, query) ||
           containsIgnoringCase(connection.localPort, query) ||
           containsIgnoringCase(connection.remotePort, query) ||
           (connection.pid >= 0 && containsIgnoringCase(std::to_string(connection.pid), query));
}

std::weak_ordering ConnectionPresentation::compare(const Connection& a, const Connection& b,
                                                   ConnectionKey key) {
    switch (key) {
    case ConnectionKey::process: {
        const auto order = compareIgnoringCase(a.processName, b.processName);
        return order != 0 ? order : a.pid <=> b.pid;
    }
    case ConnectionKey::pid: return a.pid <=> b.pid;
    case ConnectionKey::proto: return a.proto <=> b.proto;
    case ConnectionKey::local: return compareAddresses(a.local, b.local);
    case ConnectionKey::localPort: return compareNumbers(a.localPort, b.localPort);
    case ConnectionKey::remote: return compareAddresses(a.remote, b.remote);
    case ConnectionKey::remotePort: return compareNumbers(a.remotePort, b.remotePort);
    case ConnectionKey::state: return a.state <=> b.state;
    }
    return std::weak_ordering::equivalent;
}

std::vector<Connection> ConnectionPresentation::sorted(std::vector<Connection> rows, ConnectionKey key,
                                                       bool ascending) {
    const auto before = [&](const Connection& a, const Connection& b) {
        const auto order = compare(a, b, key);
        return ascending ? order < 0 : order > 0;
    };
    if (std::is_sorted(rows.begin(), rows.end(), before)) return rows;
    // A row is large, so only its place is moved about.
    std::vector<Connection*> order(rows.size());
    std::transform(rows.begin(), rows.end(), order.begin(), [](Connection& row) { return &row; });
    std::stable_sort(order.begin(), order.end(),
                     [&](const Connection* a, const Connection* b) { return before(*a, *b); });
    std::vector<Connection> result;
    result.reserve(rows.size());
    for (auto* row : order) result.push_back(std::move(*row));
    return result;
}

std::vector<ConnectionProcess> ConnectionPresentation::grouped(std::vector<Connection> rows,
                                                               ConnectionKey key, bool ascending) {
    return groupedBy<ConnectionProcess>(
        std::move(rows), key, ascending, [](const Connection& row) { return row.pid; },
        [](const Connection& row) {
            return ConnectionProcess{row.pid, row.processName, {}};
        });
}

std::vector<ConnectionDestination> ConnectionPresentation::groupedByDestination(std::vector<Connection> rows,
                                                                                ConnectionKey key,
                                                                                bool ascending) {
    return groupedBy<ConnectionDestination>(
        std::move(rows), key, ascending, [](const Connection& row) { return row.destinationKey(); },
        [](const Connection& row) {
            return ConnectionDestination{row.destinationKey(), {}};
        });
}

Tone ConnectionPresentation::tone(std::string_view state) {
    const auto* known = find(state);
    return known ? known->tone : Tone::neutral;
}

std::string_view ConnectionPresentation::stateMeaning(std::string_view state) {
    const auto* known = find(state);
    return known ? known->meaning : state;
}

std::string ConnectionPresentation::stateText(std::string_view state) {
    const auto* known = find(state);
    if (!known) return std::string(state);
    std::string text(known->meaning);
    return text.append(" (").append(known->name).append(")");
}

bool ConnectionPresentation::isLocalPeer(std::string_view address) {
    constexpr std::string_view mapped = "::ffff:";
    if (address == "localhost" || address == "::1" || address.starts_with("fe80:")) return true;
    if (address.starts_with(mapped)) address.remove_prefix(mapped.size());
    return isPrivateIPv4(address);
}

} // namespace quarn
