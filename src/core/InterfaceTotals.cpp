#include "core/InterfaceTotals.h"

#include "core/platform.h"

#include <algorithm>
#include <array>

namespace sysinfo {

namespace {

/// Growth of one counter, where a 32-bit counter may have wrapped.
uint64_t growth(uint64_t current, uint64_t previous) {
    if (current >= previous) return current - previous;
    return previous <= UINT32_MAX ? static_cast<uint32_t>(current - previous) : 0;
}

/// Bytes and packets only fall together when a driver reset its counters; a wrap takes one of them.
bool wasReset(const InterfaceCounters& current, const InterfaceCounters& previous) {
    return (current.rxBytes < previous.rxBytes && current.rxPackets < previous.rxPackets) ||
           (current.txBytes < previous.txBytes && current.txPackets < previous.txPackets);
}

} // namespace

InterfaceTotals::Totals InterfaceTotals::add(const std::vector<InterfaceCounters>& current) {
    static const InterfaceCounters none;
    for (const auto& now : current) {
        const auto before = std::find_if(last_.begin(), last_.end(), [&](const InterfaceCounters& known) {
            return known.index == now.index && known.name == now.name;
        });
        if (before == last_.end() && primed_) continue;
        const bool whole = before == last_.end() || wasReset(now, *before);
        const InterfaceCounters& base = whole ? none : *before;
        totals_.rxBytes += growth(now.rxBytes, base.rxBytes);
        totals_.txBytes += growth(now.txBytes, base.txBytes);
        totals_.rxPackets += growth(now.rxPackets, base.rxPackets);
        totals_.txPackets += growth(now.txPackets, base.txPackets);
    }
    last_ = current;
    primed_ = true;
    return totals_;
}

bool countsInterface(std::string_view name, uint32_t flags, uint8_t type) {
    if (name.empty() || (flags & platform::linkLoopback)) return false;
    if (type == platform::linkTypeCellular) return true;
    if (type != platform::linkTypeEthernet || (flags & platform::linkPointToPoint)) return false;
    static constexpr std::array<std::string_view, 10> carriedByOthers{
        "anpi", "ap", "awdl", "llw", "nan", "bridge", "vmenet", "feth", "vlan", "bond"};
    return std::none_of(carriedByOthers.begin(), carriedByOthers.end(),
                        [&](std::string_view prefix) { return name.starts_with(prefix); });
}

} // namespace sysinfo
