#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo {

/// Counters of one interface that carries the machine's own traffic.
struct InterfaceCounters {
    uint32_t index = 0;
    std::string name;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
};

/// Machine-wide traffic as sums of increments, robust against counters that reset or wrap and interfaces
/// that come and go. The totals never go down.
class InterfaceTotals {
public:
    struct Totals {
        uint64_t rxBytes = 0;
        uint64_t txBytes = 0;
        uint64_t rxPackets = 0;
        uint64_t txPackets = 0;
    };

    /// Adds what each interface carried since the previous call. The first call starts the totals at the
    /// sums of the counters; an interface that appears later counts from its second reading.
    Totals add(const std::vector<InterfaceCounters>& current);

private:
    std::vector<InterfaceCounters> last_;
    Totals totals_;
    bool primed_ = false;
};

/// Whether an interface carries the machine's own traffic once: physical Ethernet-type ports and cellular
/// links do; loopback, tunnels, bridges and virtual-machine links do not. `flags` and `type` are those of
/// platform::Link.
bool countsInterface(std::string_view name, uint32_t flags, uint8_t type);

} // namespace sysinfo
