#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// One interface of proc/net/dev, the table that stands in where the kernel cannot be asked by message.
struct NetDevLine {
    std::string name;
    uint64_t rxBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t rxErrors = 0;
    uint64_t rxDropped = 0;
    uint64_t txBytes = 0;
    uint64_t txPackets = 0;
    uint64_t txErrors = 0;
    uint64_t collisions = 0;
};

/// The interfaces in the order of the table. Lines without a name or with fewer than sixteen numbers are left
/// out. Pure.
std::vector<NetDevLine> parseNetDev(std::string_view text);

} // namespace sysinfo::platform
