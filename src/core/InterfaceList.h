#pragma once

#include "core/platform.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sysinfo {

/// One network interface for people: what it is, its addresses and what it carried since it came up. The
/// counters are the kernel's 64-bit ones and do not wrap.
struct NetInterface {
    uint64_t rxBytes = 0;
    uint64_t txBytes = 0;
    uint64_t rxPackets = 0;
    uint64_t txPackets = 0;
    uint64_t rxErrors = 0;
    uint64_t txErrors = 0;
    uint64_t drops = 0; ///< received and thrown away
    uint64_t collisions = 0;
    int32_t mtu = 0;
    int32_t linkSpeedMbps = 0; ///< 0 unknown
    std::string media;         ///< "1000baseT full-duplex", "auto (no link)", "IEEE 802.11", …
    std::string netmask;       ///< of IPv4, dotted
    std::string broadcast;     ///< of IPv4
    bool loopback = false;
    bool pointToPoint = false;
    bool multicastCapable = false;
    std::string name;
    std::string mac;                ///< "52:54:00:12:34:56", empty without one
    std::vector<std::string> addrs; ///< IPv4, then IPv6 without link-local ones
    bool up = false;                ///< switched on and running
};

/// Every interface in ascending order of name, without the loopback "lo" and without interfaces that have no
/// address and never carried a byte. Empty when the kernel does not answer. Stateless; from any thread.
std::vector<NetInterface> readInterfaces(const SystemRoot& root);

/// The same for callers that ask on every tick: texts are made anew only when a link or an address changed.
class InterfaceList {
public:
    /// Valid until the next call.
    const std::vector<NetInterface>& sample(platform::Readers& readers);

private:
    uint64_t revision_ = 0;
    std::vector<NetInterface> all_;
    std::vector<NetInterface> listed_;
};

/// An interface with its texts, without counters.
NetInterface describeInterface(const platform::Interface& interface);

/// "1000baseT full-duplex": the wiring, the duplex and whether there is a link; empty for links without
/// media.
std::string mediaText(const platform::Media& media);

/// An address of `family` (AF_INET or AF_INET6) as text; empty on failure.
std::string ntop(int family, const void* address);

/// "52:54:00:12:34:56"
std::string formatMac(std::span<const uint8_t, 6> address);

} // namespace sysinfo
