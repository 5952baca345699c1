#pragma once

#include "core/SystemRoot.h"
#include "core/platform.h"

#include <optional>
#include <string>
#include <string_view>

/// What a network port is plugged into.
namespace sysinfo::platform {

/// The part of an ethtool answer that matters. Pure, for tests.
struct LinkSettings {
    uint32_t speed = 0;      ///< Mbit/s; all ones or 0 unknown
    uint8_t duplex = 0xff;   ///< DUPLEX_HALF, DUPLEX_FULL, otherwise unknown
    uint8_t port = 0;        ///< PORT_TP, PORT_FIBRE, …
    uint8_t negotiation = 0; ///< AUTONEG_ENABLE or not
};
Media wiredMedia(const LinkSettings& settings, bool active);

/// The media of a link, `active` telling whether it has a carrier: of ports, and of bonds and teams, which
/// add up those of their ports. Other links made in software invent their speeds; they have no media. Asks
/// the driver (which may take milliseconds), unless its device sleeps; sysfs under a captured root.
Media readMedia(const SystemRoot& root, const std::string& name, std::string_view kind, bool active);

} // namespace sysinfo::platform
