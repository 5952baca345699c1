#include "core/linux/SocketDiag.h"

#include <cerrno>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace sysinfo::platform {

namespace {

/// The kernel fills at most this much for one datagram.
constexpr size_t datagramSize = 32 * 1024;

/// The number that stands for idle sockets in requests; older headers lack it.
constexpr unsigned boundInactive = 13;

uint64_t identity(const inet_diag_msg& message) {
    const uint64_t low = message.id.idiag_cookie[0];
    const uint64_t high = message.id.idiag_cookie[1];
    const bool hasCookie = low != INET_DIAG_NOCOOKIE || high != INET_DIAG_NOCOOKIE;
    return hasCookie ? high << 32 | low : message.idiag_inode;
}

void copyAddress(std::array<uint8_t, 16>& out, const __be32 (&words)[4], bool isIPv6) {
    if (isIPv6)
        std::memcpy(out.data(), words, sizeof words);
    else
        std::memcpy(out.data() + 12, words, sizeof words[0]);
}

SocketEntry describe(const inet_diag_msg& message, uint8_t protocol) {
    SocketEntry entry;
    entry.inode = message.idiag_inode;
    auto& socket = entry.socket;
    socket.id = identity(message);
    socket.protocol = protocol;
    socket.isIPv6 = message.idiag_family == AF_INET6;
    if (protocol == IPPROTO_TCP) socket.tcpState = bsdTcpState(message.idiag_state);
    copyAddress(socket.local, message.id.idiag_src, socket.isIPv6);
    copyAddress(socket.remote, message.id.idiag_dst, socket.isIPv6);
    socket.localPort = ntohs(message.id.idiag_sport);
    socket.remotePort = ntohs(message.id.idiag_dport);
    return entry;
}

} // namespace

SocketDumpProgress parseSocketDump(std::string_view datagram, uint32_t sequence, uint8_t protocol,
                                   std::vector<SocketEntry>& out) {
    while (datagram.size() >= sizeof(nlmsghdr)) {
        nlmsghdr header;
        std::memcpy(&header, datagram.data(), sizeof header);
        if (header.nlmsg_len < sizeof header || header.nlmsg_len > datagram.size())
            return SocketDumpProgress::failed;
        const std::string_view payload = datagram.substr(sizeof header, header.nlmsg_len - sizeof header);
        datagram.remove_prefix(std::min<size_t>(NLMSG_ALIGN(size_t{header.nlmsg_len}), datagram.size()));
        if (header.nlmsg_seq != sequence) continue;
        if (header.nlmsg_type == NLMSG_DONE) return SocketDumpProgress::done;
        if (header.nlmsg_type == NLMSG_ERROR) return SocketDumpProgress::failed;
        if (header.nlmsg_type != SOCK_DIAG_BY_FAMILY) continue;
        inet_diag_msg message;
        if (payload.size() < sizeof message) return SocketDumpProgress::failed;
        std::memcpy(&message, payload.data(), sizeof message);
        if (message.idiag_family == AF_INET || message.idiag_family == AF_INET6)
            out.push_back(describe(message, protocol));
    }
    return datagram.empty() ? SocketDumpProgress::more : SocketDumpProgress::failed;
}

bool SocketDiag::read(SocketTable table, Idle idle, std::vector<SocketEntry>& out) {
    const size_t before = out.size();
    if (request(table, idle)) {
        auto progress = SocketDumpProgress::more;
        while (progress == SocketDumpProgress::more) progress = receive(table, out);
        if (progress == SocketDumpProgress::done) return true;
    }
    out.resize(before);
    netlink_.reset(); // what is left of a broken answer must not reach the next request
    return false;
}

bool SocketDiag::request(SocketTable table, Idle idle) {
    if (!netlink_) netlink_.reset(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (!netlink_) return false;
    struct {
        nlmsghdr header{};
        inet_diag_req_v2 body{};
    } message;
    message.header.nlmsg_len = sizeof message;
    message.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    message.header.nlmsg_seq = ++sequence_;
    message.body.sdiag_family = table.isIPv6 ? AF_INET6 : AF_INET;
    message.body.sdiag_protocol = table.protocol;
    message.body.idiag_states = idle == Idle::included ? ~0U : ~(1U << boundInactive);
    for (;;) {
        const auto sent = ::send(netlink_.get(), &message, sizeof message, 0);
        if (sent >= 0) return static_cast<size_t>(sent) == sizeof message;
        if (errno != EINTR) return false;
    }
}

SocketDumpProgress SocketDiag::receive(SocketTable table, std::vector<SocketEntry>& out) {
    if (buffer_.empty()) buffer_.resize(datagramSize);
    for (;;) {
        const auto length = ::recv(netlink_.get(), buffer_.data(), buffer_.size(), MSG_TRUNC);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0 || static_cast<size_t>(length) > buffer_.size()) return SocketDumpProgress::failed;
        return parseSocketDump({buffer_.data(), static_cast<size_t>(length)}, sequence_, table.protocol, out);
    }
}

} // namespace sysinfo::platform
