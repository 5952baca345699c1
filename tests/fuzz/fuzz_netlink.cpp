// Route messages: any bytes must be taken without a fault, and what comes out must be usable.
#include "Fuzz.h"
#include "core/linux/AddressSocket.h"
#include "core/linux/LinkMessages.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sysinfo::platform;
    const std::span<const char> datagram(textOf(data, size));
    AnswerProgress links, statistics;
    std::vector<LinkIdentity> identities;
    std::vector<LinkCounters> counters;
    parseLinks(datagram, 1, links, identities);
    parseLinkCounters(datagram, 1, statistics, counters);
    for (const auto& identity : identities)
        require(identity.index != 0 && !identity.name.empty() && identity.name.size() <= 15);
    require(links.ended == statistics.ended && links.failed == statistics.failed);
    AnswerProgress addressing;
    std::vector<LinkAddress> addresses;
    parseAddresses(datagram, 1, addressing, addresses);
    interfaceName(datagram.data(), datagram.size());
    return 0;
}
