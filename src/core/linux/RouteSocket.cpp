#include "core/linux/RouteSocket.h"

#include <algorithm>
#include <cerrno>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <utility>

namespace sysinfo::platform {

namespace {

constexpr size_t firstBufferSize = 32 * 1024; // the kernel fills datagrams up to this size
constexpr size_t largestBufferSize = 1024 * 1024;

scutil::UniqueFd openRouteSocket(uint32_t groups) {
    scutil::UniqueFd fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = groups;
    if (fd && ::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) fd.reset();
    return fd;
}

/// The true length of the next datagram, which may exceed `buffer`; −1 when there is none or on an error.
/// Datagrams that did not come from the kernel have length 0.
ssize_t receive(int fd, std::vector<char>& buffer) {
    sockaddr_nl sender{};
    socklen_t senderLength = sizeof sender;
    ssize_t length = 0;
    do {
        length = ::recvfrom(fd, buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC,
                            reinterpret_cast<sockaddr*>(&sender), &senderLength);
    } while (length < 0 && errno == EINTR);
    return length > 0 && sender.nl_pid != 0 ? 0 : length;
}

} // namespace

bool RouteSocket::open() {
    if (socket_) return true;
    if (buffer_.empty()) buffer_.resize(firstBufferSize);
    socket_ = openRouteSocket(0);
    announcements_ = openRouteSocket(groups_);
    justOpened_ = true;
    return static_cast<bool>(socket_);
}

void RouteSocket::close() { socket_.reset(); }

bool RouteSocket::changeAnnounced() {
    bool changed = std::exchange(justOpened_, false) || !announcements_;
    while (announcements_) {
        const ssize_t length = receive(announcements_.get(), buffer_);
        if (length < 0 && errno != ENOBUFS) break; // ENOBUFS: some announcements were lost
        changed = true;
    }
    return changed;
}

RouteSocket::Answer RouteSocket::ask(uint16_t type, Bytes body, const Parse& parse) {
    nlmsghdr header{};
    header.nlmsg_len = static_cast<uint32_t>(sizeof header + body.size());
    header.nlmsg_type = type;
    header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    header.nlmsg_seq = ++sequence_;
    std::memcpy(buffer_.data(), &header, sizeof header);
    std::memcpy(buffer_.data() + sizeof header, body.data(), body.size());
    if (::send(socket_.get(), buffer_.data(), header.nlmsg_len, 0) != header.nlmsg_len) return Answer::failed;

    AnswerProgress progress;
    while (!progress.ended && !progress.failed) {
        const ssize_t got = receive(socket_.get(), buffer_);
        if (got < 0) return Answer::failed;
        if (static_cast<size_t>(got) > buffer_.size()) {
            buffer_.resize(std::min(static_cast<size_t>(got) * 2, largestBufferSize));
            return Answer::failed; // and with the larger buffer the next time
        }
        parse(Bytes(buffer_.data(), static_cast<size_t>(got)), sequence_, progress);
    }
    if (progress.failed) return Answer::failed;
    return progress.interrupted ? Answer::interrupted : Answer::whole;
}

} // namespace sysinfo::platform
