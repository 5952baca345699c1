#pragma once

#include "cli/ConnectionsText.h"
#include "core/SystemRoot.h"
#include "inventory/ConnectionFilter.h"

#include <array>
#include <string>
#include <string_view>

namespace quarn::cli {

/// What the options of the command are called, by their values.
inline constexpr std::array<std::string_view, 2> connectionGroupingNames{"process", "destination"};
inline constexpr std::array<std::string_view, 4> connectionScopeNames{"internet", "listening", "local",
                                                                      "all"};
inline constexpr std::array<std::string_view, 3> connectionProtocolNames{"all", "tcp", "udp"};

/// What `quarn connections` was asked for.
struct ConnectionsOptions {
    enum class Form { text, json } form = Form::text;
    ConnectionGrouping grouping = ConnectionGrouping::process; ///< of the text
    ConnectionProtocol protocol = ConnectionProtocol::all;
    ConnectionScope scope = ConnectionScope::all;
    std::string search;
    Charset charset = Charset::utf8; ///< of the text
};

/// Appends to `out` the sockets of the machine that the options let through; throws std::runtime_error when
/// there is no socket table to read.
///
/// JSON is one list in the order of pids, `grouping` aside, and a line feed. Null there is what a socket does
/// not have or does not tell: the process of somebody else's socket, the state of UDP, the peer of a
/// listening socket, the local address of one that takes all.
void runConnections(const ConnectionsOptions& options, const sysinfo::SystemRoot& root, std::string& out);

} // namespace quarn::cli
