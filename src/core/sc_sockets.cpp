#include "core/FlatRecords.h"
#include "core/SocketList.h"
#include "core/sc.h"

SCSocket* sc_read_sockets(uint32_t* count) {
    sysinfo::SocketLister lister(sysinfo::SystemRoot::host());
    lister.refresh(sysinfo::SocketScope::inspectable);
    return scutil::flatRecords<SCSocket>(lister.sockets(), count,
                                         [](const SCSocket& socket, SCSocket& out) { out = socket; });
}

void sc_free_sockets(SCSocket* sockets) { std::free(sockets); }
