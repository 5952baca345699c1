#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What decides whether a link is a port of this machine or made of other links.
namespace sysinfo::platform {

struct LinkTraits {
    uint16_t hardwareType = 0;  ///< ARPHRD_ETHER, …
    std::string kind;           ///< of a link made in software: "bridge", "veth", …; from netlink only
    std::string deviceType;     ///< of the driver: "wlan", "wwan", "dsa", …; mostly empty
    bool physical = false;      ///< a device carries it
    bool underPhysical = false; ///< joined under another physical link, whose counters contain this one's,
                                ///< as a virtual machine's accelerated port is
};

/// One of the types of platform::Link.
uint8_t linkType(const LinkTraits& traits);

/// What sys/class/net tells of a link. Where a captured machine lacks that folder, the name decides.
LinkTraits readLinkTraits(const SystemRoot& root, std::string_view name);

} // namespace sysinfo::platform
