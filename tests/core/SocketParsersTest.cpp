// The kernel's socket tables as text, as messages and as links of descriptors, with all that can be wrong
// about them; and the form in which addresses are shown.
#include "core/SocketList.h"
#include "core/linux/SocketDiag.h"
#include "core/linux/SocketHolders.h"
#include "core/linux/SocketTables.h"
#include "support/TempRoot.h"

#include <arpa/inet.h>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <random>

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;
using quarn::testing::TempRoot;

KernelSocket kernelSocket(bool isIPv6, const char* local, uint16_t localPort, const char* remote,
                          uint16_t remotePort) {
    KernelSocket socket;
    socket.protocol = IPPROTO_TCP;
    socket.isIPv6 = isIPv6;
    const size_t offset = isIPv6 ? 0 : 12;
    const int family = isIPv6 ? AF_INET6 : AF_INET;
    EXPECT_EQ(::inet_pton(family, local, socket.local.data() + offset), 1) << local;
    EXPECT_EQ(::inet_pton(family, remote, socket.remote.data() + offset), 1) << remote;
    socket.localPort = localPort;
    socket.remotePort = remotePort;
    return socket;
}

TEST(SocketForm, AddressesFollowWhatTheSocketSpeaks) {
    struct Case {
        const char* what;
        KernelSocket socket;
        const char* local;
        bool hasRemote;
        const char* remote;
    };
    const Case cases[] = {
        {"listening on all", kernelSocket(false, "0.0.0.0", 80, "0.0.0.0", 0), "", false, ""},
        {"connected", kernelSocket(false, "10.0.0.200", 80, "192.168.1.9", 5), "10.0.0.200", true,
         "192.168.1.9"},
        {"peer without a port", kernelSocket(false, "10.0.0.1", 80, "10.0.0.2", 0), "10.0.0.1", true,
         "10.0.0.2"},
        {"peer without an address", kernelSocket(false, "10.0.0.1", 80, "0.0.0.0", 7), "10.0.0.1", true, ""},
        {"listening on all, IPv6", kernelSocket(true, "::", 80, "::", 0), "", false, ""},
        {"connected, IPv6", kernelSocket(true, "fe80::1", 80, "2001:db8::2", 5), "fe80::1", true,
         "2001:db8::2"},
        {"dual stack, IPv4 peer", kernelSocket(true, "::ffff:10.0.0.1", 80, "::ffff:10.0.0.2", 5), "10.0.0.1",
         true, "10.0.0.2"},
        {"dual stack, IPv4 peer, no own address", kernelSocket(true, "::", 80, "::ffff:10.0.0.2", 5), "",
         true, "10.0.0.2"},
        {"bound to a mapped address", kernelSocket(true, "::ffff:10.0.0.1", 80, "::", 0), "10.0.0.1", false,
         ""},
        {"bound to the mapped zero", kernelSocket(true, "::ffff:0.0.0.0", 80, "::ffff:0.0.0.0", 0), "", false,
         ""},
    };
    for (const auto& each : cases) {
        const auto flat = flatSocket(each.socket);
        EXPECT_STREQ(flat.local, each.local) << each.what;
        EXPECT_EQ(flat.hasRemote, each.hasRemote) << each.what;
        EXPECT_STREQ(flat.remote, each.remote) << each.what;
        EXPECT_EQ(flat.remotePort, each.socket.remotePort) << each.what;
        EXPECT_EQ(flat.ipVersion, each.socket.isIPv6 ? 6 : 4) << each.what;
    }
}

TEST(SocketForm, LongNamesAreCutAndEnded) {
    auto socket = kernelSocket(false, "10.0.0.1", 80, "0.0.0.0", 0);
    const std::string name(100, 'n');
    socket.processName = name;
    EXPECT_EQ(flatSocket(socket).name, name.substr(0, 63));
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
    const std::string good =
        "0: 0100007F:0016 0200000A:01BB 01 00000000:00000000 00:00000000 00000000 0 0 77 1\n";
    const struct {
        std::string line;
        size_t sockets;
    } cases[] = {
        {good, 1},
        {good.substr(0, good.size() - 6), 0}, // no inode
        {"0: 0100007F:0016\n", 0},
        {"0: 0100007F:10016 0200000A:01BB 01 0:0 00:0 0 0 0 77\n", 0}, // port too large
        {"0: 0100007G:0016 0200000A:01BB 01 0:0 00:0 0 0 0 77\n", 0},
        {"0: 000000000100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0 77\n", 0},
        {"0: 0100007F:0016 0200000A:01BB 01 0:0 00:0 0 0 0 99999999999\n", 0},
        {"\n\n", 0},
        {good.substr(0, good.size() - 1), 1}, // no line feed at the end
    };
    for (const auto& each : cases) {
        std::vector<SocketEntry> entries;
        parseSocketTable(head + each.line, {IPPROTO_TCP, false}, entries);
        EXPECT_EQ(entries.size(), each.sockets) << each.line;
    }
    std::vector<SocketEntry> entries;
    parseSocketTable(head + good, {IPPROTO_TCP, false}, entries);
    const auto flat = flatSocket(entries.at(0).socket);
    EXPECT_STREQ(flat.local, "127.0.0.1");
    EXPECT_EQ(flat.localPort, 22);
    EXPECT_STREQ(flat.remote, "10.0.0.2");
    EXPECT_EQ(flat.remotePort, 443);
    EXPECT_EQ(flat.state, 4);
    EXPECT_EQ(flat.socketId, 77U);
}

TEST(SocketStatistics, TellWhetherASocketIsInNoTable) {
    const std::string used = "sockets: used 290\nTCP: inuse 5 orphan 0 tw 3 alloc ";
    const struct {
        std::string sockstat, sockstat6;
        bool mayHave;
    } cases[] = {
        {used + "8 mem 1\nUDP: inuse 3\n", "TCP6: inuse 3\n", false},
        {used + "9 mem 1\n", "TCP6: inuse 3\n", true},
        {used + "5\n", "", false}, // no IPv6
        {used + "x\n", "TCP6: inuse 3\n", true},
        {"TCP: inuse", "", true},
        {"", "", true},
    };
    for (const auto& each : cases)
        EXPECT_EQ(mayHaveIdleTcpSockets(each.sockstat, each.sockstat6), each.mayHave) << each.sockstat;
}

TEST(SocketLinks, OnlySocketsHaveAnInode) {
    EXPECT_EQ(parseSocketLink("socket:[12345]"), 12345U);
    for (const char* other : {"", "socket:[", "socket:[]", "socket:[12", "socket:[-1]", "socket:[1x]",
                              "pipe:[12345]", "/tmp/socket:[1]", "socket:[99999999999]"})
        EXPECT_EQ(parseSocketLink(other), std::nullopt) << other;
}

/// Messages as the kernel sends them.
class Datagram {
public:
    Datagram& socket(uint16_t port, uint32_t sequence = 7, uint8_t family = AF_INET) {
        inet_diag_msg message{};
        message.idiag_family = family;
        message.idiag_state = 1;
        message.idiag_inode = port;
        message.id.idiag_sport = htons(port);
        message.id.idiag_cookie[0] = port;
        message.id.idiag_cookie[1] = 1;
        return append(SOCK_DIAG_BY_FAMILY, sequence,
                      {reinterpret_cast<const char*>(&message), sizeof message});
    }
    Datagram& append(uint16_t type, uint32_t sequence, std::string_view payload) {
        nlmsghdr header{};
        header.nlmsg_len = static_cast<uint32_t>(sizeof header + payload.size());
        header.nlmsg_type = type;
        header.nlmsg_seq = sequence;
        text.append(reinterpret_cast<const char*>(&header), sizeof header).append(payload);
        text.resize(NLMSG_ALIGN(text.size()));
        return *this;
    }
    std::string text;
};

TEST(SocketMessages, AreTakenOnlyWhole) {
    const std::string four(4, '\0');
    const struct {
        const char* what;
        std::string text;
        SocketDumpProgress progress;
        size_t sockets;
    } cases[] = {
        {"nothing", "", SocketDumpProgress::more, 0},
        {"two", Datagram().socket(1).socket(2).text, SocketDumpProgress::more, 2},
        {"the end", Datagram().socket(1).append(NLMSG_DONE, 7, four).text, SocketDumpProgress::done, 1},
        {"a refusal", Datagram().append(NLMSG_ERROR, 7, four).text, SocketDumpProgress::failed, 0},
        {"a former request", Datagram().socket(1, 6).append(NLMSG_DONE, 6, four).socket(2).text,
         SocketDumpProgress::more, 1},
        {"another family", Datagram().socket(1, 7, AF_UNIX).text, SocketDumpProgress::more, 0},
        {"a short body", Datagram().append(SOCK_DIAG_BY_FAMILY, 7, four).text, SocketDumpProgress::failed, 0},
        {"a length of 0", std::string(16, '\0'), SocketDumpProgress::failed, 0},
        {"half a header", Datagram().socket(1).text + "half", SocketDumpProgress::failed, 1},
    };
    for (const auto& each : cases) {
        std::vector<SocketEntry> entries;
        EXPECT_EQ(parseSocketDump(each.text, 7, IPPROTO_TCP, entries), each.progress) << each.what;
        EXPECT_EQ(entries.size(), each.sockets) << each.what;
    }
    const auto whole = Datagram().socket(1).socket(2).text;
    for (size_t length = 1; length < whole.size(); ++length) {
        // A block of its own, so that reading past the end is seen.
        const std::vector<char> cut(whole.begin(), whole.begin() + static_cast<long>(length));
        std::vector<SocketEntry> entries;
        const auto progress = parseSocketDump({cut.data(), cut.size()}, 7, IPPROTO_TCP, entries);
        EXPECT_EQ(progress == SocketDumpProgress::more, length == whole.size() / 2) << length;
    }
    std::vector<SocketEntry> entries;
    parseSocketDump(whole, 7, IPPROTO_UDP, entries);
    EXPECT_EQ(entries.at(1).socket.id, uint64_t{1} << 32 | 2) << "the cookie, not the inode";
    EXPECT_EQ(entries.at(1).socket.tcpState, -1);
}

TEST(CapturedSockets, AreListedOnceUnderTheLowestPid) {
    TempRoot machine;
    machine.copyFixture("hosts/one-editor");
    machine.link("proc/300/fd/4", "socket:[2740]").write("proc/300/comm", "later\n");
    machine.link("proc/42/fd/10", "socket:[2740]").link("proc/42/fd/9", "socket:[11337031]");
    machine.link("proc/42/fd/8", "socket:[2740]").link("proc/42/fd/3", "pipe:[21040]");
    machine.write("proc/42/comm", "a \"name\"\n");
    SocketLister lister(machine.root());
    const auto listed = [&](SocketScope scope) {
        std::vector<SCSocket> result;
        const auto sockets = lister.list(scope).value();
        for (const auto* socket : sockets) result.push_back(flatSocket(*socket));
        return result;
    };
    const auto owned = listed(SocketScope::inspectable);
    // The capture repeats one socket in three lines, and in the tables of TCP and of UDP.
    ASSERT_EQ(owned.size(), 2U);
    const auto& listening = owned[0];
    EXPECT_EQ(listening.pid, 42);
    EXPECT_STREQ(listening.name, "a \"name\"");
    EXPECT_EQ(listening.protocol, IPPROTO_TCP);
    EXPECT_STREQ(listening.local, "10.0.0.5");
    EXPECT_EQ(listening.localPort, 22);
    EXPECT_EQ(listening.state, 1);
    const auto& v6 = owned[1];
    EXPECT_STREQ(v6.local, "fe80::56e1:adff:fe7c:6609");
    EXPECT_EQ(v6.localPort, 51073);
    EXPECT_EQ(v6.ipVersion, 6);

    const auto all = listed(SocketScope::all);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[2].pid, noProcess);
    EXPECT_EQ(all[2].localPort, 5355);

    EXPECT_FALSE(SocketLister(TempRoot().root()).list(SocketScope::all));
}

} // namespace
