#pragma once

#include "core/SystemRoot.h"
#include "core/linux/AddressSocket.h"
#include "core/linux/LinkSocket.h"
#include "core/platform.h"

#include <map>
#include <vector>

namespace sysinfo::platform {

/// Lists the interfaces: from the kernel by message, under a captured root (or where messages are forbidden)
/// from proc/net/dev and sysfs, without addresses then. In steady state a reading costs one request for
/// counters.
class InterfaceReader {
public:
    explicit InterfaceReader(SystemRoot root) : root_(std::move(root)) {}

    std::optional<InterfaceTable> list();

private:
    bool readFromKernel();
    bool readFromTable();
    void describe();
    const Media& mediaOf(const LinkIdentity& link);

    struct KnownMedia {
        LinkIdentity link; ///< as it was when the driver was asked
        Media media;
    };

    SystemRoot root_;
    LinkSocket links_;
    AddressSocket addresses_;
    uint64_t linksDescribed_ = 0; ///< revisions that `interfaces_` is made from
    uint64_t addressesDescribed_ = 0;
    uint64_t revision_ = 0;
    std::vector<Interface> interfaces_; ///< from the kernel: in the order of the link identities
    std::map<uint32_t, KnownMedia> media_;
};

} // namespace sysinfo::platform
