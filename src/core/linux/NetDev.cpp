#include "core/linux/NetDev.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

std::vector<NetDevLine> parseNetDev(std::string_view text) {
    std::vector<NetDevLine> lines;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const size_t colon = line.rfind(':'); // a name may hold colons, the numbers do not
        if (colon == std::string_view::npos) continue;
        const std::string_view name = scutil::trimmed(line.substr(0, colon));
        line.remove_prefix(colon + 1);
        enum Column { rxBytes, rxPackets, rxErrors, rxDropped, rxFifo, rxFrame, rxCompressed, multicast };
        enum { txBytes = 8, txPackets, txErrors, txDropped, txFifo, collisions, carrier, txCompressed };
        std::array<uint64_t, 16> value{};
        const bool whole = std::all_of(value.begin(), value.end(), [&](uint64_t& column) {
            const auto number = scutil::toNumber<uint64_t>(scutil::takeWord(line));
            column = number.value_or(0);
            return number.has_value();
        });
        if (name.empty() || !whole) continue;
        lines.push_back({std::string(name), value[rxBytes], value[rxPackets], value[rxErrors],
                         value[rxDropped], value[txBytes], value[txPackets], value[txErrors],
                         value[collisions]});
    }
    return lines;
}

} // namespace sysinfo::platform
