// Real loopback sockets of this process and of a child, as the listing shows them.
#include "core/SocketList.h"
#include "ListedSockets.h"
#include "core/linux/SocketDiag.h"
#include "support/Child.h"

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <netdb.h>
#include <sys/socket.h>
#include <thread>

namespace {

using namespace quarn::testing;
using scutil::UniqueFd;

/// A socket after `use`, bind or connect, on an address.
UniqueFd opened(int type, const char* host, uint16_t port, int (*use)(int, const sockaddr*, socklen_t)) {
    addrinfo hints{}, *found = nullptr;
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = type;
    EXPECT_EQ(::getaddrinfo(host, std::to_string(port).c_str(), &hints, &found), 0) << host;
    UniqueFd socket(::socket(found->ai_family, type | SOCK_CLOEXEC, 0));
    const int no = 0;
    ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &no, sizeof no);
    EXPECT_EQ(use(socket.get(), found->ai_addr, found->ai_addrlen), 0) << std::strerror(errno);
    ::freeaddrinfo(found);
    return socket;
}

uint16_t portOf(const UniqueFd& socket) {
    sockaddr_in6 own{}; // whose port lies where that of IPv4 does
    socklen_t length = sizeof own;
    ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&own), &length);
    return ntohs(own.sin6_port);
}

std::string portText(const UniqueFd& socket) { return std::to_string(portOf(socket)); }

UniqueFd bound(int type, const char* host) {
    UniqueFd socket = opened(type, host, 0, ::bind);
    if (type == SOCK_STREAM) ::listen(socket.get(), 4);
    return socket;
}

UniqueFd connected(int type, const char* host, const UniqueFd& to) {
    return opened(type, host, portOf(to), ::connect);
}

UniqueFd accepted(const UniqueFd& listening) {
    return UniqueFd(::accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
}

std::vector<SCSocket> ofPort(const std::vector<SCSocket>& all, uint16_t port, int protocol = IPPROTO_TCP) {
    std::vector<SCSocket> result;
    for (const auto& socket : all)
        if (socket.localPort == port && socket.protocol == protocol) result.push_back(socket);
    return result;
}

/// "127.0.0.1:5000 > 127.0.0.1:80", the ends of a connection over the loopback.
std::string between(const UniqueFd& own, const UniqueFd& peer, const std::string& host = "127.0.0.1:") {
    return host + portText(own) + " > " + host + portText(peer);
}

/// How a socket of this process is shown.
std::string own(const std::string& ends, int state) {
    return ends + " state " + std::to_string(state) + " of " + std::to_string(::getpid()) + " core_tests, ";
}

bool hasIPv6() { return bool(std::ifstream("/proc/net/if_inet6").get() != EOF); }

TEST(SocketList, ShowsEachKindOfSocketAsItIs) {
    const auto any = bound(SOCK_STREAM, "0.0.0.0");
    const auto client = connected(SOCK_STREAM, "127.0.0.1", any);
    const auto server = accepted(any);
    const auto udp = bound(SOCK_DGRAM, "127.0.0.1");
    const auto udpClient = connected(SOCK_DGRAM, "127.0.0.1", udp);

    uint32_t count = 99;
    SCSocket* flat = sc_read_sockets(&count);
    const std::vector<SCSocket> all(flat, flat + count);
    EXPECT_EQ(flat[count].pid, 0) << "one zero record more than counted";
    sc_free_sockets(flat);

    EXPECT_EQ(shown(ofPort(all, portOf(client))), own("TCP4 " + between(client, any), 4));
    EXPECT_EQ(shown(ofPort(all, portOf(any))),
              own("TCP4 " + between(any, client), 4) + own("TCP4 :" + portText(any), 1));
    const auto datagrams = [&](const UniqueFd& at) { return shown(ofPort(all, portOf(at), IPPROTO_UDP)); };
    EXPECT_EQ(datagrams(udp), own("UDP4 127.0.0.1:" + portText(udp), -1));
    EXPECT_EQ(datagrams(udpClient), own("UDP4 " + between(udpClient, udp), -1));
    for (const auto& socket : ofPort(all, portOf(any))) EXPECT_NE(socket.socketId, 0U);
}

TEST(SocketList, ShowsIPv4TextsWhereADualStackSocketSpeaksIPv4) {
    if (!hasIPv6()) GTEST_SKIP() << "this kernel has no IPv6";
    const auto dual = bound(SOCK_STREAM, "::");
    const auto only = bound(SOCK_STREAM, "::1");
    const auto v4Client = connected(SOCK_STREAM, "::ffff:127.0.0.1", dual);
    const auto fromV4 = accepted(dual);
    const auto v6Client = connected(SOCK_STREAM, "::1", only);
    const auto fromV6 = accepted(only);

    const auto all = listed();
    EXPECT_EQ(ends(ofPort(all, portOf(v4Client)).at(0)), "TCP6 " + between(v4Client, dual));
    EXPECT_EQ(ends(ofPort(all, portOf(v6Client)).at(0)), "TCP6 " + between(v6Client, only, "::1:"));
    EXPECT_EQ(shown(ofPort(all, portOf(dual))),
              own("TCP6 " + between(dual, v4Client), 4) + own("TCP6 :" + portText(dual), 1));
}

TEST(SocketList, ListsAnInheritedSocketOnceUnderTheLowestPid) {
    const auto shared = bound(SOCK_STREAM, "127.0.0.1");
    const UniqueFd twice(::dup(shared.get()));
    const Child child;
    const auto found = ofPort(listed(), portOf(shared));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].pid, std::min(::getpid(), child.pid()));
}

TEST(SocketList, ShowsSocketsThatNoProcessHoldsOnlyOnRequest) {
    const auto listening = bound(SOCK_STREAM, "127.0.0.1");
    auto client = connected(SOCK_STREAM, "127.0.0.1", listening);
    const auto server = accepted(listening);
    const uint16_t port = portOf(client);
    const auto orphan = "TCP4 " + between(client, listening), held = "TCP4 " + between(listening, client);
    client.reset(); // the kernel keeps its end until the server closes too

    EXPECT_TRUE(ofPort(listed(), port).empty());
    const auto all = listed(SocketScope::all);
    const auto found = ofPort(all, port);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(joined(ends(found[0]), found[0].pid, found[0].name), orphan + "|-1|");
    EXPECT_TRUE(shown(ofPort(all, portOf(listening))).starts_with(own(held, 5)));
}

/// A child that opens and closes a listening socket and changes its name on command.
void obey(char letter) {
    static UniqueFd socket;
    if (letter == 'o') socket = bound(SOCK_STREAM, "127.0.0.9");
    if (letter == 'c') socket.reset();
    if (letter == 'n') std::ofstream("/proc/self/comm") << "renamed-process";
}

TEST(SocketList, KeepsWhatSleepsAndSeesWhatRan) {
    Child child(obey), idle(obey);
    idle.tell('o');
    SocketLister lister(SystemRoot::host());
    const auto refreshed = [&](const Child& of) {
        child.settle();
        idle.settle();
        std::vector<SCSocket> found;
        for (const auto& socket : listed(lister))
            if (socket.pid == of.pid() && std::string_view(socket.local) == "127.0.0.9")
                found.push_back(socket);
        return found;
    };
    EXPECT_EQ(refreshed(child).size(), 0U);
    const auto first = refreshed(idle);
    ASSERT_EQ(first.size(), 1U);
    child.tell('o');
    EXPECT_EQ(refreshed(child).size(), 1U);
    child.tell('n');
    EXPECT_STREQ(refreshed(child).at(0).name, "renamed-process");
    const auto kept = refreshed(idle);
    ASSERT_EQ(kept.size(), 1U) << "the descriptors of a sleeping process are not walked, but still known";
    EXPECT_EQ(kept[0].socketId, first[0].socketId);
    child.tell('c');
    EXPECT_EQ(refreshed(child).size(), 0U);
    idle.kill();
    idle.reap();
    for (const auto& socket : listed(lister)) EXPECT_STRNE(socket.local, "127.0.0.9");
}

TEST(SocketList, FindsSocketsBehindGapsInTheDescriptors) {
    auto socket = bound(SOCK_STREAM, "127.0.0.1");
    const UniqueFd far(::fcntl(socket.get(), F_DUPFD_CLOEXEC, 900));
    ASSERT_GE(far.get(), 900);
    socket.reset();
    EXPECT_EQ(ofPort(listed(), portOf(far)).size(), 1U);
}

TEST(SocketList, MissesNoneWhileLowerNumbersComeAndGo) {
    std::array<UniqueFd, 16> low;
    const auto openLow = [&] {
        for (auto& each : low) each.reset(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    };
    openLow();
    SocketLister lister(SystemRoot::host());
    listed(lister); // opens what it keeps
    const auto highest = bound(SOCK_STREAM, "127.0.0.1");
    std::atomic<bool> done = false;
    std::thread opener([&] {
        while (!done) {
            for (auto& each : low) each.reset();
            openLow();
        }
    });
    size_t found = 0;
    constexpr size_t rounds = 300;
    for (size_t round = 0; round < rounds; ++round) found += ofPort(listed(lister), portOf(highest)).size();
    done = true;
    opener.join();
    EXPECT_EQ(found, rounds);
}

TEST(SocketList, ShowsASocketThatIsBoundAndNotUsed) {
    const UniqueFd idle = opened(SOCK_STREAM, "127.0.0.1", 0, ::bind);
    const auto found = ofPort(listed(), portOf(idle));
    if (found.empty()) GTEST_SKIP() << "kernels before 6.8 do not tell of such sockets";
    EXPECT_EQ(found.at(0).state, 0);
    EXPECT_EQ(found.at(0).pid, ::getpid());
}

/// The messages and the text of the running kernel must tell the same.
TEST(SocketList, AgreesWithTheTablesAsText) {
    const auto listening = bound(SOCK_STREAM, "127.0.0.1");
    const auto client = connected(SOCK_STREAM, "127.0.0.1", listening);
    const auto server = accepted(listening);
    const auto udp = bound(SOCK_DGRAM, "127.0.0.1");
    const auto ownOf = [&](const std::vector<platform::SocketEntry>& entries) {
        std::map<uint32_t, platform::KernelSocket> result;
        for (auto entry : entries) {
            entry.socket.id = 0; // text knows no cookies
            for (const auto* mine : {&listening, &client, &server, &udp})
                if (entry.socket.localPort == portOf(*mine)) result.emplace(entry.inode, entry.socket);
        }
        return result;
    };
    for (const uint8_t protocol : {IPPROTO_TCP, IPPROTO_UDP}) {
        const platform::SocketTable table{protocol, false};
        std::vector<platform::SocketEntry> messages, lines;
        ASSERT_TRUE(platform::SocketDiag().read(table, platform::SocketDiag::Idle::included, messages));
        std::ostringstream text;
        text << std::ifstream(protocol == IPPROTO_TCP ? "/proc/net/tcp" : "/proc/net/udp").rdbuf();
        platform::parseSocketTable(text.str(), table, lines);
        EXPECT_EQ(ownOf(messages), ownOf(lines));
        EXPECT_EQ(ownOf(messages).size(), protocol == IPPROTO_TCP ? 3U : 1U);
    }
}

} // namespace
