#pragma once

#include <cstdint>
#include <unordered_map>

namespace quarn {

/// What a process exchanges over the network, bytes per second.
struct NetworkRate {
    double download = 0;
    double upload = 0;
};

/// By pid; a process whose traffic is not known is not in it.
using NetworkRates = std::unordered_map<int64_t, NetworkRate>;

} // namespace quarn
