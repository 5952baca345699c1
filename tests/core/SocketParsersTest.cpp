// The kernel's socket tables as text, as messages and as links of descriptors, with all that can be wrong
// about them; and the form in which addresses are shown.
#include "ListedSockets.h"
#include "NetlinkSupport.h"
#include "core/SocketList.h"
#include "core/linux/SocketDiag.h"
#include "core/linux/SocketHolders.h"
#include "core/linux/SocketTables.h"

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/sock_diag.h>
#include <random>

namespace {

using namespace quarn::testing;

/// How a socket at port 80 shows its ends.
std::string shownEnds(int family, const char* local, const char* remote, uint16_t remotePort) {
    KernelSocket socket;
    socket.protocol = IPPROTO_TCP;
    socket.isIPv6 = family == AF_INET6;
    const size_t offset = socket.isIPv6 ? 0 : 12;
    EXPECT_EQ(::inet_pton(family, local, socket.local.data() + offset), 1) << local;
    EXPECT_EQ(::inet_pton(family, remote, socket.remote.data() + offset), 1) << remote;
    socket.localPort = 80;
    socket.remotePort = remotePort;
    return ends(flatSocket(socket));
}

TEST(SocketForm, AddressesFollowWhatTheSocketSpeaks) {
    constexpr int v4 = AF_INET, v6 = AF_INET6;
    EXPECT_EQ(shownEnds(v4, "0.0.0.0", "0.0.0.0", 0), "TCP4 :80");
    EXPECT_EQ(shownEnds(v4, "10.0.0.200", "192.168.1.9", 5), "TCP4 10.0.0.200:80 > 192.168.1.9:5");
    EXPECT_EQ(shownEnds(v4, "10.0.0.1", "10.0.0.2", 0), "TCP4 10.0.0.1:80 > 10.0.0.2:0");
    EXPECT_EQ(shownEnds(v4, "10.0.0.1", "0.0.0.0", 7), "TCP4 10.0.0.1:80 > :7");
    EXPECT_EQ(shownEnds(v6, "::", "::", 0), "TCP6 :80");
    EXPECT_EQ(shownEnds(v6, "fe80::1", "2001:db8::2", 5), "TCP6 fe80::1:80 > 2001:db8::2:5");
    EXPECT_EQ(shownEnds(v6, "::ffff:10.0.0.1", "::ffff:10.0.0.2", 5), "TCP6 10.0.0.1:80 > 10.0.0.2:5");
    EXPECT_EQ(shownEnds(v6, "::", "::ffff:10.0.0.2", 5), "TCP6 :80 > 10.0.0.2:5");
    EXPECT_EQ(shownEnds(v6, "::ffff:10.0.0.1", "::", 0), "TCP6 10.0.0.1:80");
    EXPECT_EQ(shownEnds(v6, "::ffff:0.0.0.0", "::ffff:0.0.0.0", 0), "TCP6 :80");
}

TEST(SocketForm, HostsReadAsTheSystemWritesThem) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        // Half of the bytes are 0, so that runs of zeros and short numbers occur.
        uint8_t bytes[16];
        for (auto& byte : bytes) byte = random() % 2 ? 0 : static_cast<uint8_t>(random());
        bytes[3] |= 1;
        char out[48], expected[48];
        formatHost(AF_INET, bytes, out);
        EXPECT_STREQ(out, ::inet_ntop(AF_INET, bytes, expected, sizeof expected));
        formatHost(AF_INET6, bytes, out);
        EXPECT_STREQ(out, ::inet_ntop(AF_INET6, bytes, expected, sizeof expected));
    }
    char out[48] = "x";
    const uint8_t zeros[16]{};
    for (const int family : {AF_INET, AF_INET6, AF_UNIX}) {
        formatHost(family, zeros, out);
        EXPECT_STREQ(out, "");
    }
}

TEST(SocketStates, FollowTheBsdNumbers) {
    const int expected[] = {-1, 4, 2, 3, 6, 9, 10, 0, 5, 8, 1, 7, 3, 0, -1};
    for (unsigned state = 0; state < std::size(expected); ++state)
        EXPECT_EQ(bsdTcpState(state), expected[state]) << state;
    EXPECT_EQ(bsdTcpState(~0U), -1);
}

TEST(SocketText, BrokenLinesAreLeftOut) {
    const std::string head = "  sl  local_address rem_address   st tx rx tr tm retr uid timeout inode\n";
    const std::string good = "0: 0100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0 77";
    const char* const broken[] = {"0: 0100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0",
                                  "0: 0100007F:0016",
                                  "0: 0100007F:10016 0200000A:01BB 01 0:0 00:0 0 0 0 77",
                                  "0: 0100007G:0016 0200000A:01BB 01 0:0 00:0 0 0 0 77",
                                  "0: 000000000100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0 77",
                                  "0: 0100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0 99999999999",
                                  "\n"};
    std::vector<SocketEntry> entries;
    for (const char* line : broken) parseSocketTable(head + line + '\n', {IPPROTO_TCP, false}, entries);
    EXPECT_TRUE(entries.empty()) << "no inode, no peer, no port, no digit, an address or an inode too long";
    parseSocketTable(head + good + '\n' + good, {IPPROTO_TCP, false}, entries);
    ASSERT_EQ(entries.size(), 2U) << "no line feed at the end";
    EXPECT_EQ(ends(flatSocket(entries[1].socket)), "TCP4 127.0.0.1:22 > 10.0.0.2:443");
    EXPECT_EQ(entries[1].socket.tcpState, 4);
    EXPECT_EQ(entries[1].socket.id, 77U);
}

TEST(SocketStatistics, TellWhetherASocketIsInNoTable) {
    const std::string used = "sockets: used 290\nTCP: inuse 5 orphan 0 tw 3 alloc ";
    const std::string inUse6 = "TCP6: inuse 3\n";
    EXPECT_FALSE(mayHaveIdleTcpSockets(used + "8 mem 1\nUDP: inuse 3\n", inUse6));
    EXPECT_TRUE(mayHaveIdleTcpSockets(used + "9 mem 1\n", inUse6));
    EXPECT_FALSE(mayHaveIdleTcpSockets(used + "5\n", "")) << "no IPv6";
    EXPECT_TRUE(mayHaveIdleTcpSockets(used + "x\n", inUse6));
    EXPECT_TRUE(mayHaveIdleTcpSockets("TCP: inuse", ""));
    EXPECT_TRUE(mayHaveIdleTcpSockets("", ""));
}

TEST(SocketLinks, OnlySocketsHaveAnInode) {
    EXPECT_EQ(parseSocketLink("socket:[12345]"), 12345U);
    for (const char* other : {"", "socket:[", "socket:[]", "socket:[12", "socket:[-1]", "socket:[1x]",
                              "pipe:[12345]", "/tmp/socket:[1]", "socket:[99999999999]"})
        EXPECT_EQ(parseSocketLink(other), std::nullopt) << other;
}

std::string socketMessage(uint16_t port, uint32_t sequence = 7, uint8_t family = AF_INET) {
    inet_diag_msg socket{};
    socket.idiag_family = family;
    socket.idiag_state = 1;
    socket.idiag_inode = port;
    socket.id.idiag_sport = htons(port);
    socket.id.idiag_cookie[0] = port;
    socket.id.idiag_cookie[1] = 1;
    return message(SOCK_DIAG_BY_FAMILY, 0, sequence, bytesOf(socket));
}

TEST(SocketMessages, AreTakenOnlyWhole) {
    using enum SocketDumpProgress;
    const std::string one = socketMessage(1), two = socketMessage(2), whole = one + two, four(4, '\0');
    const auto is = [](const std::string& text, SocketDumpProgress progress, size_t sockets) {
        std::vector<SocketEntry> entries;
        return parseSocketDump(text, 7, IPPROTO_TCP, entries) == progress && entries.size() == sockets;
    };
    EXPECT_TRUE(is("", more, 0));
    EXPECT_TRUE(is(whole, more, 2));
    EXPECT_TRUE(is(one + message(NLMSG_DONE, 0, 7, four), done, 1));
    EXPECT_TRUE(is(message(NLMSG_ERROR, 0, 7, four), failed, 0));
    EXPECT_TRUE(is(socketMessage(1, 6) + message(NLMSG_DONE, 0, 6, four) + two, more, 1))
        << "a former request";
    EXPECT_TRUE(is(socketMessage(1, 7, AF_UNIX), more, 0));
    EXPECT_TRUE(is(message(SOCK_DIAG_BY_FAMILY, 0, 7, four), failed, 0)) << "a short body";
    EXPECT_TRUE(is(std::string(16, '\0'), failed, 0)) << "a length of 0";
    EXPECT_TRUE(is(one + "half", failed, 1));
    std::vector<SocketEntry> entries;
    for (size_t length = 1; length < whole.size(); ++length) {
        // A block of its own, so that reading past the end is seen.
        const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<long>(length));
        const auto progress = parseSocketDump({cut.data(), cut.size()}, 7, IPPROTO_TCP, entries);
        EXPECT_EQ(progress == more, length == one.size()) << length;
    }
    entries.clear();
    parseSocketDump(whole, 7, IPPROTO_UDP, entries);
    EXPECT_EQ(entries.at(1).socket.id, uint64_t{1} << 32 | 2) << "the cookie, not the inode";
    EXPECT_EQ(entries.at(1).socket.tcpState, -1);
}

TEST(CapturedSockets, AreListedOnceUnderTheLowestPid) {
    TempRoot machine;
    machine.copyFixture("hosts/one-editor");
    machine.link("proc/300/fd/4", "socket:[2740]").link("proc/42/fd/10", "socket:[2740]");
    machine.link("proc/42/fd/9", "socket:[11337031]").link("proc/42/fd/8", "socket:[2740]");
    machine.link("proc/42/fd/3", "pipe:[21040]");
    machine.files("proc", "300/comm=later;42/comm=a \"name\"");
    SocketLister lister(machine.root());
    // The capture repeats one socket in three lines, and in the tables of TCP and of UDP.
    EXPECT_EQ(shown(listed(lister)), "TCP4 10.0.0.5:22 state 1 of 42 a \"name\", "
                                     "TCP6 fe80::56e1:adff:fe7c:6609:51073 state 0 of 42 a \"name\", ");
    const auto all = listed(lister, SocketScope::all);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(shown({all[2]}), "TCP6 :5355 state 0 of -1 , ");
    EXPECT_FALSE(SocketLister(TempRoot().root()).list(SocketScope::all));
}

} // namespace
