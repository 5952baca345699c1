#include "core/SocketList.h"

#include "core/FlatRecords.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <span>

namespace sysinfo {

namespace {

using Address = std::array<uint8_t, 16>;

bool isIPv4Mapped(const Address& address) {
    constexpr std::array<uint8_t, 12> prefix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    return std::memcmp(address.data(), prefix.data(), prefix.size()) == 0;
}

bool isZero(std::span<const uint8_t> bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

std::span<const uint8_t> lastFour(const Address& address) { return std::span(address).last(4); }

/// What inet_ntop makes of an IPv4 address, at a tenth of its cost: a listing writes thousands.
void formatIPv4(std::span<const uint8_t> bytes, char* out) {
    for (size_t i = 0; i < 4; ++i) {
        const unsigned byte = bytes[i];
        if (i > 0) *out++ = '.';
        if (byte >= 100) *out++ = static_cast<char>('0' + byte / 100);
        if (byte >= 10) *out++ = static_cast<char>('0' + byte / 10 % 10);
        *out++ = static_cast<char>('0' + byte % 10);
    }
    *out = '\0';
}

} // namespace

SCSocket flatSocket(const platform::KernelSocket& socket) {
    SCSocket flat{};
    flat.pid = socket.pid;
    scutil::copyText(flat.name, socket.processName);
    flat.protocol = socket.protocol;
    flat.ipVersion = socket.isIPv6 ? 6 : 4;
    flat.state = socket.tcpState;
    flat.socketId = socket.id;

    // A socket of the IPv6 family that is bound to a mapped address can speak IPv4 only.
    const bool onlyIPv4 = !socket.isIPv6 || isIPv4Mapped(socket.local);
    const auto peer = onlyIPv4 ? lastFour(socket.remote) : std::span<const uint8_t>(socket.remote);
    flat.hasRemote = socket.remotePort != 0 || !isZero(peer);
    const bool showIPv4 = onlyIPv4 || (flat.hasRemote && isIPv4Mapped(socket.remote));

    const auto format = [&](const Address& address, char(&out)[48]) {
        if (showIPv4)
            formatHost(AF_INET, lastFour(address).data(), out);
        else
            formatHost(AF_INET6, address.data(), out);
    };
    format(socket.local, flat.local);
    flat.localPort = socket.localPort;
    if (flat.hasRemote) {
        format(socket.remote, flat.remote);
        flat.remotePort = socket.remotePort;
    }
    return flat;
}

} // namespace sysinfo

void formatHost(int family, const void* address, char out[48]) {
    out[0] = '\0';
    if (family == AF_INET) {
        const std::span bytes(static_cast<const uint8_t*>(address), 4);
        if (!sysinfo::isZero(bytes)) sysinfo::formatIPv4(bytes, out);
    } else if (family == AF_INET6) {
        const std::span bytes(static_cast<const uint8_t*>(address), 16);
        if (!sysinfo::isZero(bytes) && !::inet_ntop(AF_INET6, address, out, 48)) out[0] = '\0';
    }
}
