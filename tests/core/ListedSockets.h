#pragma once

#include "core/SocketList.h"

namespace quarn::testing {

inline std::vector<SCSocket> listed(sysinfo::SocketLister& lister,
                                    sysinfo::SocketScope scope = sysinfo::SocketScope::inspectable) {
    std::vector<SCSocket> result;
    const auto sockets = lister.list(scope).value();
    for (const auto* socket : sockets) result.push_back(sysinfo::flatSocket(*socket));
    return result;
}

/// The sockets of this machine, looked for anew.
inline std::vector<SCSocket> listed(sysinfo::SocketScope scope = sysinfo::SocketScope::inspectable) {
    sysinfo::SocketLister lister(sysinfo::SystemRoot::host());
    return listed(lister, scope);
}

} // namespace quarn::testing
