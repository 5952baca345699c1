#pragma once

namespace quarn {

/// Which connections a list shows, by where their peer is. Values outside the named ones show all.
enum class ConnectionScope : int { internet, listening, localNetwork, all };

/// Which protocols a list shows.
enum class ConnectionProtocol : int { all, tcp, udp };

} // namespace quarn
