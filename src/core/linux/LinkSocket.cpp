#include "core/linux/LinkSocket.h"

#include "core/linux/Netlink.h"

#include <algorithm>
#include <cerrno>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace sysinfo::platform {

namespace {

constexpr size_t firstBufferSize = 32 * 1024; // the kernel fills datagrams up to this size
constexpr size_t largestBufferSize = 1024 * 1024;

template <class Body>
struct Request {
    nlmsghdr header{};
    Body body{};
};

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

bool LinkSocket::open() {
    if (socket_) return true;
    if (buffer_.empty()) buffer_.resize(firstBufferSize);
    socket_ = openRouteSocket(0);
    announcements_ = openRouteSocket(RTMGRP_LINK);
    identitiesKnown_ = false;
    return static_cast<bool>(socket_);
}

bool LinkSocket::changeAnnounced() {
    if (!announcements_) return true; // without announcements every reading is complete
    bool changed = false;
    for (;;) {
        const ssize_t length = receive(announcements_.get(), buffer_);
        if (length < 0 && errno != ENOBUFS) return changed; // ENOBUFS: some announcements were lost
        changed = true;
    }
}

template <class Parse>
LinkSocket::Answer LinkSocket::ask(const void* request, size_t length, Parse parse) {
    if (::send(socket_.get(), request, length, 0) != static_cast<ssize_t>(length)) return Answer::failed;
    DumpProgress progress;
    while (!progress.ended && !progress.failed) {
        const ssize_t got = receive(socket_.get(), buffer_);
        if (got < 0) return Answer::failed;
        if (static_cast<size_t>(got) > buffer_.size()) {
            buffer_.resize(std::min(static_cast<size_t>(got) * 2, largestBufferSize));
            return Answer::failed;
        }
        parse(Bytes(buffer_.data(), static_cast<size_t>(got)), progress);
    }
    if (progress.failed) return Answer::failed;
    return progress.interrupted ? Answer::interrupted : Answer::whole;
}

LinkSocket::Answer LinkSocket::readIdentities() {
    struct Body {
        ifinfomsg link{};
        nlattr attribute{sizeof(nlattr) + sizeof(uint32_t), IFLA_EXT_MASK};
        uint32_t mask = RTEXT_FILTER_SKIP_STATS;
    };
    Request<Body> request;
    request.header = {sizeof request, RTM_GETLINK, NLM_F_REQUEST | NLM_F_DUMP, ++sequence_, 0};
    identities_.clear();
    const auto answer = ask(&request, sizeof request, [&](Bytes datagram, DumpProgress& progress) {
        parseLinks(datagram, sequence_, progress, identities_);
    });
    std::sort(identities_.begin(), identities_.end(),
              [](const LinkIdentity& a, const LinkIdentity& b) { return a.index < b.index; });
    identitiesKnown_ = answer == Answer::whole;
    ++revision_;
    return answer;
}

LinkSocket::Answer LinkSocket::readCounters() {
    Request<if_stats_msg> request;
    request.header = {sizeof request, RTM_GETSTATS, NLM_F_REQUEST | NLM_F_DUMP, ++sequence_, 0};
    request.body.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);
    counters_.clear();
    return ask(&request, sizeof request, [&](Bytes datagram, DumpProgress& progress) {
        parseLinkCounters(datagram, sequence_, progress, counters_);
    });
}

size_t LinkSocket::position(uint32_t index) const {
    const auto found =
        std::lower_bound(identities_.begin(), identities_.end(), index,
                         [](const LinkIdentity& link, uint32_t wanted) { return link.index < wanted; });
    const bool isThere = found != identities_.end() && found->index == index;
    return isThere ? static_cast<size_t>(found - identities_.begin()) : identities_.size();
}

bool LinkSocket::read() {
    constexpr int attempts = 4; // links may come and go while they are listed
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (!open()) return false;
        if (changeAnnounced()) identitiesKnown_ = false;
        Answer answer = identitiesKnown_ ? Answer::whole : readIdentities();
        if (answer == Answer::whole) answer = readCounters();
        if (answer == Answer::failed) socket_.reset(); // with all that was left of the answer
        if (answer != Answer::whole) continue;
        const bool allKnown =
            std::all_of(counters_.begin(), counters_.end(), [&](const LinkCounters& counters) {
                return position(counters.index) < identities_.size();
            });
        if (allKnown) return true;
        identitiesKnown_ = false;
    }
    return false;
}

} // namespace sysinfo::platform
