#pragma once

#include "core/linux/RouteSocket.h"
#include "core/platform.h"

#include <vector>

namespace sysinfo::platform {

/// An address and the link it belongs to.
struct LinkAddress {
    uint32_t index = 0; ///< of the link
    InterfaceAddress address;
    bool operator==(const LinkAddress&) const = default;
};

/// Appends the IPv4 and IPv6 addresses in one datagram of the answer to request number `sequence`. Pure.
void parseAddresses(Bytes datagram, uint32_t sequence, AnswerProgress& progress,
                    std::vector<LinkAddress>& out);

/// The addresses of this machine's network namespace; asked again only after the kernel announced a change.
/// Never blocks. Belongs to one thread at a time.
class AddressSocket {
public:
    AddressSocket();

    /// False when the kernel does not answer; the next call then starts anew.
    bool read();

    /// Of the last successful `read`, in the kernel's order.
    const std::vector<LinkAddress>& addresses() const { return addresses_; }
    /// Grows whenever an address came, went or changed.
    uint64_t revision() const { return revision_; }

private:
    RouteSocket socket_;
    bool known_ = false;
    uint64_t revision_ = 0;
    std::vector<LinkAddress> addresses_;
    std::vector<LinkAddress> former_;
};

} // namespace sysinfo::platform
