#pragma once

#include "core/SocketList.h"
#include "core/Support.h"

#include <netinet/in.h>
#include <set>

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

/// "TCP4 127.0.0.1:5000 > 10.0.0.2:443"
inline std::string ends(const SCSocket& socket) {
    std::ostringstream text;
    text << (socket.protocol == IPPROTO_TCP ? "TCP" : "UDP") << socket.ipVersion << ' ' << socket.local << ':'
         << socket.localPort;
    if (socket.hasRemote) text << " > " << socket.remote << ':' << socket.remotePort;
    return text.str();
}

/// The same with " state 4 of 42 sshd, ", of each socket, sorted.
inline std::string shown(const std::vector<SCSocket>& sockets) {
    std::multiset<std::string> texts;
    for (const auto& socket : sockets)
        texts.insert(ends(socket) + " state " + joined(socket.state) + " of " + joined(socket.pid) + ' ' +
                     socket.name + ',');
    return joinedEach(texts, std::identity{});
}

} // namespace quarn::testing
