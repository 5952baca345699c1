#pragma once

#include "core/linux/Netlink.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The kernel's route messages about network links. Pure functions over received bytes: nothing in a message
/// is trusted, lengths least of all.
namespace sysinfo::platform {

/// What a link is, apart from its counters.
struct LinkIdentity {
    uint32_t index = 0;
    std::string name;
    uint32_t interfaceFlags = 0; ///< IFF_UP, IFF_LOOPBACK, …
    uint16_t hardwareType = 0;   ///< ARPHRD_ETHER, …
    std::string kind;            ///< "bridge", "veth", …; empty for most hardware
    uint32_t mtu = 0;
    std::string address; ///< raw bytes, as the next
    std::string permanentAddress;
    bool carrier = false;
    uint32_t carrierChanges = 0; ///< how often the carrier came or went
    bool operator==(const LinkIdentity&) const = default;
};

/// The counters of one link.
struct LinkCounters {
    uint32_t index = 0;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
    uint64_t rxErrors = 0;
    uint64_t txErrors = 0;
    uint64_t rxDropped = 0;
    uint64_t collisions = 0;
};

/// Appends the links in one datagram of the answer to request number `sequence`.
void parseLinks(Bytes datagram, uint32_t sequence, AnswerProgress& progress, std::vector<LinkIdentity>& out);

/// The same for a request of counters.
void parseLinkCounters(Bytes datagram, uint32_t sequence, AnswerProgress& progress,
                       std::vector<LinkCounters>& out);

/// The name of the interface that one link message, header included, is about; empty when it carries no
/// usable name.
std::string_view interfaceName(const char* message, size_t length);

} // namespace sysinfo::platform
