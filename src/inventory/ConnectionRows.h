#pragma once

#include "inventory/ConnectionPresentation.h"

#include <array>

namespace quarn {

/// What a person chose to see of the connections.
struct ConnectionView {
    enum class Grouping : int { process, destination, none };
    enum class Direction { ascending, descending };

    Grouping grouping = Grouping::process;
    ConnectionScope scope = ConnectionScope::all;
    ConnectionProtocol protocol = ConnectionProtocol::all;
    std::string search{};
    ConnectionKey sortedBy = ConnectionKey::process;
    Direction direction = Direction::ascending;

    bool operator==(const ConnectionView&) const = default;
};

/// One row of the list: a connection, or a group of several.
struct ConnectionRow {
    /// The connection. Of a group what all of its members have in common; where they differ the text is
    /// ConnectionDestination::mixed, and the pid `mixedPids`.
    Connection shown;
    std::string key;    ///< what makes it the same row from refresh to refresh
    int parent = -1;    ///< number of the row of its group, −1 at the top
    size_t members = 0; ///< of a group; 0 for a connection

    /// Of a group: how many different values its members have, by ConnectionKey.
    std::array<size_t, connectionKeyCount> distinct{};
    std::string states{}; ///< of a group: "8 connected, 2 listening"

    static constexpr int64_t mixedPids = -2;
    bool isGroup() const { return members > 0; }
    bool operator==(const ConnectionRow&) const = default;
};

/// The rows from top to bottom, groups before their members, and what there is to say of them. A group of
/// one is no group: its member stands by itself.
struct ConnectionRows {
    std::vector<ConnectionRow> rows;
    size_t sockets = 0;   ///< all that there are
    size_t shown = 0;     ///< those that the view lets through
    size_t processes = 0; ///< that hold any
    size_t internet = 0;  ///< with a peer beyond this network

    static ConnectionRows of(const std::vector<Connection>& connections, const ConnectionView& view);
    /// "212 sockets of 34 processes; 18 connections to the internet", or what a filter lets through.
    std::string sentence() const;
};

} // namespace quarn
