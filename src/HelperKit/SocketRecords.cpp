#include "HelperKit/SocketRecords.h"

#include "core/FlatRecords.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>

namespace quarn {

namespace {

int32_t clamped(int64_t value) {
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<int64_t>(value, Limits::min(), Limits::max()));
}

} // namespace

SocketRecord toRecord(const SCSocket& socket) {
    SocketRecord record;
    record.pid = socket.pid;
    record.name = socket.name;
    record.proto = socket.protocol;
    record.ipVersion = socket.ipVersion;
    record.local = socket.local;
    record.localPort = socket.localPort;
    if (socket.hasRemote) record.remote = socket.remote;
    record.remotePort = socket.remotePort;
    record.tcpState = socket.state;
    record.socketID = socket.socketId;
    return record;
}

SCSocket toSocket(const SocketRecord& record) {
    SCSocket socket{};
    socket.pid = clamped(record.pid);
    scutil::copyText(socket.name, record.name);
    socket.protocol = clamped(record.proto);
    socket.ipVersion = clamped(record.ipVersion);
    scutil::copyText(socket.local, record.local);
    socket.localPort = clamped(record.localPort);
    socket.hasRemote = record.remote.has_value();
    if (record.remote) scutil::copyText(socket.remote, *record.remote);
    socket.remotePort = clamped(record.remotePort);
    socket.state = clamped(record.tcpState);
    socket.socketId = record.socketID;
    return socket;
}

std::vector<SocketRecord> SocketRecord::readAll() {
    uint32_t count = 0;
    const std::unique_ptr<SCSocket, decltype(&sc_free_sockets)> sockets(sc_read_sockets(&count),
                                                                        sc_free_sockets);
    std::vector<SocketRecord> records;
    records.reserve(count);
    std::transform(sockets.get(), sockets.get() + count, std::back_inserter(records), toRecord);
    return records;
}

} // namespace quarn
