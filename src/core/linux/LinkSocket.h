#pragma once

#include "core/linux/LinkMessages.h"
#include "core/linux/RouteSocket.h"

#include <vector>

namespace sysinfo::platform {

/// The links of this machine's network namespace, asked from the kernel through kept netlink sockets. A
/// reading in steady state asks for counters only: names and kinds are asked again after the kernel announced
/// a change. Never blocks. Belongs to one thread at a time.
class LinkSocket {
public:
    LinkSocket();

    /// Reads the counters of every link, and first the identities when a link changed, came or went. False
    /// when the kernel does not answer; the next call then starts anew.
    bool read();

    /// Of the last successful `read`, in ascending order of index.
    const std::vector<LinkIdentity>& identities() const { return identities_; }
    /// Of the last successful `read`; each belongs to one of `identities`.
    const std::vector<LinkCounters>& counters() const { return counters_; }
    /// Where the link of this index stands in `identities`; their size when there is none.
    size_t position(uint32_t index) const;
    /// Grows whenever an identity came, went or changed.
    uint64_t revision() const { return revision_; }

private:
    RouteSocket::Answer readIdentities();
    RouteSocket::Answer readCounters();
    bool everyCounterHasItsLink() const;

    RouteSocket socket_;
    bool identitiesKnown_ = false;
    uint64_t revision_ = 0;
    std::vector<LinkIdentity> identities_;
    std::vector<LinkIdentity> former_;
    std::vector<LinkCounters> counters_;
};

} // namespace sysinfo::platform
