#pragma once

#include <cstdint>
#include <span>
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
    std::string kind;            ///< "bridge", "veth", …; empty for most hardware
};

/// The counters of one link.
struct LinkCounters {
    uint32_t index = 0;
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
};

/// How far the answer to one request has come. `failed` and `ended` are final; an interrupted answer comes to
/// its end but may lack links, because some came or went meanwhile.
struct DumpProgress {
    bool ended = false;
    bool failed = false;
    bool interrupted = false;
};

/// Appends the links in one datagram of the answer to request number `sequence`. Messages that answer another
/// request are passed over.
void parseLinks(std::span<const char> datagram, uint32_t sequence, DumpProgress& progress,
                std::vector<LinkIdentity>& out);

/// The same for a request of counters.
void parseLinkCounters(std::span<const char> datagram, uint32_t sequence, DumpProgress& progress,
                       std::vector<LinkCounters>& out);

/// The name of the interface that one link message, header included, is about; empty when it carries no
/// usable name.
std::string_view interfaceName(const char* message, size_t length);

} // namespace sysinfo::platform
