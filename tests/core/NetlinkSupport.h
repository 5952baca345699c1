#pragma once

#include "core/UniqueFd.h"

#include <array>
#include <cstring>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <thread>

namespace quarn::testing {

/// Builds netlink messages as bytes.
template <class Structure>
std::string bytesOf(const Structure& structure) {
    return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

inline std::string padded(std::string bytes) {
    bytes.resize((bytes.size() + 3) & ~size_t{3});
    return bytes;
}

inline std::string attribute(uint16_t type, std::string_view value) {
    const nlattr header{static_cast<uint16_t>(sizeof(nlattr) + value.size()), type};
    return padded(bytesOf(header) + std::string(value));
}

inline std::string message(uint16_t type, uint16_t flags, uint32_t sequence, const std::string& payload) {
    const nlmsghdr header{static_cast<uint32_t>(sizeof(nlmsghdr) + payload.size()), type, flags, sequence, 0};
    return padded(bytesOf(header) + payload);
}

/// Runs `test` on a thread with a network of its own; skips where that is not permitted.
inline void inOwnNetwork(void (*test)()) {
    bool permitted = false;
    std::thread([&] {
        permitted = ::unshare(CLONE_NEWNET) == 0;
        if (permitted) test();
    }).join();
    if (!permitted) GTEST_SKIP() << "a network namespace needs root";
}

/// One request that changes the calling thread's network; true when it was done.
inline bool changeNetwork(uint16_t type, uint16_t flags, const std::string& payload) {
    const scutil::UniqueFd fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    const std::string request = message(type, NLM_F_REQUEST | NLM_F_ACK | flags, 1, payload);
    std::array<char, 4096> reply{};
    if (::send(fd.get(), request.data(), request.size(), 0) < 0) return false;
    const auto got = ::recv(fd.get(), reply.data(), reply.size(), 0);
    int32_t error = -1;
    if (got < static_cast<ssize_t>(sizeof(nlmsghdr) + sizeof error)) return false;
    std::memcpy(&error, reply.data() + sizeof(nlmsghdr), sizeof error);
    return error == 0;
}

inline bool addBridge(const std::string& name) {
    return changeNetwork(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL,
                         bytesOf(ifinfomsg{}) + attribute(IFLA_IFNAME, name + '\0') +
                             attribute(IFLA_LINKINFO, attribute(IFLA_INFO_KIND, "bridge")));
}

inline bool switchOn(unsigned index) {
    ifinfomsg link{};
    link.ifi_index = static_cast<int>(index);
    link.ifi_flags = IFF_UP;
    link.ifi_change = IFF_UP;
    return changeNetwork(RTM_NEWLINK, 0, bytesOf(link));
}

} // namespace quarn::testing
