#pragma once

#include "cli/TerminalText.h"
#include "inventory/Connection.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace quarn::cli {

enum class ConnectionGrouping { process, destination };

/// Connections for people: one sentence, then a heading for each process or each peer with its rows in
/// aligned columns. Groups come in the order of their names or addresses, last those that have none; rows of
/// a group in the order of their local ports.
///
/// The cells of all rows lie in one text, and only their places are sorted: with thousands of rows, touching
/// memory for the first time is what costs most.
class ConnectionsText {
public:
    /// Memory is reserved for `expectedRows`.
    ConnectionsText(ConnectionGrouping grouping, Charset charset, size_t expectedRows);

    void add(const Connection& row);
    void appendTo(std::string& out) const;

private:
    /// The cells of a row follow each other in `cells_`.
    struct Row {
        size_t at = 0;
        uint32_t group = 0;
        uint32_t localPort = 0;
        uint32_t protoLength = 0;
        uint32_t localLength = 0;
        uint32_t otherLength = 0; ///< what the heading does not say: the peer, or the process
        uint32_t otherWidth = 0;  ///< of it on a terminal; of the other cells it is the length
        uint32_t stateLength = 0;
    };

    uint32_t groupOf(const Connection& row);
    std::vector<uint32_t> groupRanks() const;
    std::vector<uint32_t> order() const;
    bool isPlaced(const Connection& row) const;
    std::string summary() const;
    std::string heading(const Connection& row) const;
    std::string processLabel(const Connection& row) const;
    std::string_view unknown() const { return charset_ == Charset::ascii ? "-" : "—"; }

    ConnectionGrouping grouping_;
    Charset charset_;
    std::string cells_;
    std::vector<Row> rows_;
    std::vector<Connection> groups_; ///< the first row of each
    std::unordered_map<std::string, uint32_t> groupsByKey_;
    uint32_t latestGroup_ = 0;
};

} // namespace quarn::cli
