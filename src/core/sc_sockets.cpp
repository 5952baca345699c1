#include "core/FlatRecords.h"
#include "core/SocketList.h"
#include "core/sc.h"

using sysinfo::platform::KernelSocket;

SCSocket* sc_read_sockets(uint32_t* count) {
    sysinfo::SocketLister lister(sysinfo::SystemRoot::host());
    const auto sockets = lister.list(sysinfo::SocketScope::inspectable);
    return scutil::flatRecords<SCSocket>(
        sockets.value_or(std::span<const KernelSocket* const>()), count,
        [](const KernelSocket* socket, SCSocket& out) { out = sysinfo::flatSocket(*socket); });
}

void sc_free_sockets(SCSocket* sockets) { std::free(sockets); }
