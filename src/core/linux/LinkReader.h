#pragma once

#include "core/SystemRoot.h"
#include "core/linux/LinkSocket.h"
#include "core/platform.h"

#include <vector>

namespace sysinfo::platform {

/// Lists the links with their types and counters: from the kernel by message, under a captured root (or where
/// messages are forbidden) from proc/net/dev. Types are looked up again only when a link changed.
class LinkReader {
public:
    explicit LinkReader(SystemRoot root) : root_(std::move(root)) {}

    bool list(std::vector<Link>& out);

private:
    bool listFromKernel(std::vector<Link>& out);
    bool listFromTable(std::vector<Link>& out) const;
    void classify();

    SystemRoot root_;
    LinkSocket socket_;
    uint64_t classified_ = 0; ///< revision of the socket's identities that `known_` is made from
    std::vector<Link> known_; ///< without counters, in the order of the identities
};

} // namespace sysinfo::platform
