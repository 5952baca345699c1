#include "inventory/ConnectionPresentation.h"

#include "HelperKit/SocketRecords.h"

#include <netinet/in.h>
#include <unistd.h>

namespace {

using namespace quarn;
using Presentation = ConnectionPresentation;
using Tone = CapsuleLabel::Tone;

Connection row(const char* local, const char* localPort, const char* remote = "*",
               const char* remotePort = "", const char* state = "ESTABLISHED") {
    Connection result;
    result.proto = "TCP";
    result.local = local;
    result.localPort = localPort;
    result.remote = remote;
    result.remotePort = remotePort;
    result.state = state;
    result.pid = 42;
    result.processName = "Browser";
    return result;
}

TEST(Connections, AreMadeFromRecords) {
    SocketRecord tcp;
    tcp.pid = 7;
    tcp.name = "from-record";
    tcp.proto = IPPROTO_TCP;
    tcp.local = "10.0.0.1";
    tcp.localPort = 22;
    tcp.remote = "10.0.0.2";
    tcp.remotePort = 50'000;
    tcp.tcpState = 5;
    tcp.socketID = UINT64_MAX;
    SocketRecord udp;
    udp.pid = 8;
    udp.name = "from-record";
    udp.proto = IPPROTO_UDP;
    udp.localPort = 53;
    udp.tcpState = -1;
    SocketRecord odd = tcp;
    odd.tcpState = 11; // no such state
    odd.remote = "";
    odd.remotePort = 0;

    const auto rows = Presentation::connections({tcp, udp, odd}, {{7, "from-map"}});
    Connection expected{
        "TCP", "10.0.0.1", "22", "10.0.0.2", "50000", "CLOSE_WAIT", 7, "from-map", "18446744073709551615"};
    EXPECT_EQ(rows.at(0), expected);
    expected = {"UDP", "", "53", "*", "", "", 8, "from-record", ""};
    EXPECT_EQ(rows.at(1), expected);
    EXPECT_EQ(rows.at(2).state, "");
    EXPECT_FALSE(rows.at(2).hasPeer());
}

TEST(Connections, KnowTheirStatesByTheBsdNumbers) {
    const struct {
        const char* name;
        const char* text;
        Tone tone;
    } states[] = {
        {"CLOSED", "closed (CLOSED)", Tone::neutral},
        {"LISTEN", "listening (LISTEN)", Tone::info},
        {"SYN_SENT", "connecting (SYN_SENT)", Tone::neutral},
        {"SYN_RECEIVED", "accepting (SYN_RECEIVED)", Tone::neutral},
        {"ESTABLISHED", "connected (ESTABLISHED)", Tone::ok},
        {"CLOSE_WAIT", "closing (CLOSE_WAIT)", Tone::warn},
        {"FIN_WAIT_1", "closing (FIN_WAIT_1)", Tone::warn},
        {"CLOSING", "closing (CLOSING)", Tone::warn},
        {"LAST_ACK", "closing (LAST_ACK)", Tone::warn},
        {"FIN_WAIT_2", "closing (FIN_WAIT_2)", Tone::warn},
        {"TIME_WAIT", "just closed (TIME_WAIT)", Tone::warn},
    };
    SocketRecord record;
    record.proto = IPPROTO_TCP;
    for (const auto& each : states) {
        EXPECT_EQ(Presentation::connections({record}, {}).at(0).state, each.name);
        EXPECT_EQ(Presentation::stateText(each.name), each.text);
        EXPECT_EQ(Presentation::tone(each.name), each.tone) << each.name;
        ++record.tcpState;
    }
    EXPECT_EQ(Presentation::stateText(""), "");
    EXPECT_EQ(Presentation::tone(ConnectionDestination::mixed), Tone::neutral);
}

TEST(LocalPeers, ArePrivateAddresses) {
    for (const char* local :
         {"localhost", "::1", "fe80::1", "10.0.0.0", "10.255.255.255", "127.0.0.1", "169.254.1.1",
          "172.16.0.1", "172.31.255.255", "192.168.0.1", "::ffff:192.168.1.5"})
        EXPECT_TRUE(Presentation::isLocalPeer(local)) << local;
    for (const char* remote :
         {"", "*", "::", "2001:db8::1", "8.8.8.8", "172.15.0.1", "172.32.0.1", "169.253.1.1", "192.167.1.1",
          "11.0.0.1", "::ffff:8.8.8.8", "::ffff:", "10.0.0", "10.0.0.256", "10.0.0.1.1", "10.0.0.1 ",
          "10..0.1", "localhost.example"})
        EXPECT_FALSE(Presentation::isLocalPeer(remote)) << remote;
}

TEST(Matching, NeedsScopeProtocolAndQuery) {
    const auto internet = row("192.168.1.2", "50000", "93.184.216.34", "443");
    const auto lan = row("192.168.1.2", "50001", "192.168.1.9", "22");
    const auto listening = row("", "8080", "*", "", "LISTEN");
    auto datagrams = row("", "5353", "", "", "");
    datagrams.proto = "UDP";
    auto ownerless = listening;
    ownerless.pid = -1;
    using Scope = ConnectionScope;
    const auto anyProto = ConnectionProtocol::all;
    const struct {
        const char* what;
        const Connection& connection;
        Scope scope;
        ConnectionProtocol proto;
        const char* query;
        bool matches;
    } cases[] = {
        {"all", datagrams, Scope::all, anyProto, "", true},
        {"another scope accepts all", listening, Scope{17}, anyProto, "", true},
        {"TCP", internet, Scope::all, ConnectionProtocol::tcp, "", true},
        {"not TCP", datagrams, Scope::all, ConnectionProtocol::tcp, "", false},
        {"UDP", datagrams, Scope::all, ConnectionProtocol::udp, "", true},
        {"not UDP", internet, Scope::all, ConnectionProtocol::udp, "", false},
        {"internet peer", internet, Scope::internet, anyProto, "", true},
        {"near peer", lan, Scope::internet, anyProto, "", false},
        {"no peer", listening, Scope::internet, anyProto, "", false},
        {"peer without address", datagrams, Scope::internet, anyProto, "", false},
        {"listening", listening, Scope::listening, anyProto, "", true},
        {"not listening", lan, Scope::listening, anyProto, "", false},
        {"local network", lan, Scope::localNetwork, anyProto, "", true},
        {"not local", internet, Scope::localNetwork, anyProto, "", false},
        {"no peer is not local", listening, Scope::localNetwork, anyProto, "", false},
        {"nor is an empty one", datagrams, Scope::localNetwork, anyProto, "", false},
        {"name, whatever the case", internet, Scope::all, anyProto, "bROW", true},
        {"remote address", internet, Scope::all, anyProto, "93.184", true},
        {"local address", internet, Scope::all, anyProto, "168.1.2", true},
        {"state", listening, Scope::all, anyProto, "listen", true},
        {"local port", internet, Scope::all, anyProto, "50000", true},
        {"remote port", internet, Scope::all, anyProto, "443", true},
        {"pid", internet, Scope::all, anyProto, "42", true},
        {"no pid", ownerless, Scope::all, anyProto, "-1", false},
        {"nothing", internet, Scope::all, anyProto, "nowhere", false},
        {"query without scope", lan, Scope::internet, anyProto, "browser", false},
    };
    for (const auto& each : cases)
        EXPECT_EQ(Presentation::matches(each.connection, each.scope, each.proto, each.query), each.matches)
            << each.what;
}

TEST(Keys, NameOneRowAndOneDestination) {
    auto a = row("10.0.0.1", "5", "93.184.216.34", "443");
    auto b = a;
    b.localPort = "6";
    EXPECT_NE(a.identity(), b.identity());
    EXPECT_EQ(a.destinationKey(), b.destinationKey());
    EXPECT_EQ(a.destinationKey(), "remote\x1f"
                                  "93.184.216.34\x1f"
                                  "443");
    a.socketID = b.socketID = "99";
    EXPECT_EQ(a.identity(), "42\x1f"
                            "99");
    b.state = "CLOSE_WAIT";
    EXPECT_EQ(a.identity(), b.identity()) << "a row keeps its selection when its state changes";
    const auto listening = row("10.0.0.1", "5"), emptyPeer = row("10.0.0.1", "5", "");
    EXPECT_EQ(listening.destinationKey(), emptyPeer.destinationKey());
    EXPECT_EQ(listening.destinationKey(), "local\x1f"
                                          "10.0.0.1\x1f"
                                          "5");
}

TEST(Sorting, OrdersNumbersAsNumbersAndKeepsEqualRows) {
    auto a = row("10.0.0.10", "443", "fe80::2", "9", "LISTEN"),
         b = row("10.0.0.9", "80", "fe80::10", "", "CLOSED");
    a.processName = "alpha";
    b.processName = "Beta";
    a.pid = 100;
    b.pid = 9;
    b.proto = "UDP";
    using enum ConnectionKey;
    const struct {
        ConnectionKey key;
        bool aFirst;
    } cases[] = {{process, true},    {pid, false},   {proto, true},       {local, false},
                 {localPort, false}, {remote, true}, {remotePort, false}, {state, false}};
    for (const auto& each : cases) {
        const auto up = Presentation::sorted({b, a}, each.key, true);
        EXPECT_EQ(up.at(0) == a, each.aFirst) << static_cast<int>(each.key);
        EXPECT_EQ(Presentation::sorted({b, a}, each.key, false).at(1) == a, each.aFirst)
            << static_cast<int>(each.key);
        EXPECT_EQ(Presentation::compare(a, a, each.key), std::weak_ordering::equivalent);
    }
    auto first = a, second = a, third = b;
    first.socketID = "1";
    second.socketID = "2";
    for (const bool ascending : {true, false}) {
        auto rows = Presentation::sorted({third, first, second}, pid, ascending);
        std::erase(rows, third);
        EXPECT_EQ(rows, (std::vector{first, second}));
    }
}

TEST(Grouping, KeepsRowsTogetherAndOrdersGroupsByTheirFirstRow) {
    auto a1 = row("10.0.0.1", "30", "1.1.1.1", "443"),
         a2 = row("10.0.0.1", "10", "1.1.1.1", "443", "CLOSE_WAIT"),
         b = row("10.0.0.2", "20", "8.8.8.8", "53");
    b.pid = 9;
    b.processName = "resolver";
    const auto byPort = Presentation::grouped({a1, b, a2}, ConnectionKey::localPort, true);
    ASSERT_EQ(byPort.size(), 2U);
    EXPECT_EQ(byPort[0].pid, 42);
    EXPECT_EQ(byPort[0].name, "Browser");
    EXPECT_EQ(byPort[0].rows, (std::vector{a2, a1}));
    EXPECT_EQ(Presentation::grouped({a1, b, a2}, ConnectionKey::process, false)[0].name, "resolver");

    const auto destinations =
        Presentation::groupedByDestination({a1, b, a2}, ConnectionKey::localPort, false);
    ASSERT_EQ(destinations.size(), 2U);
    const auto& shared = destinations[0];
    EXPECT_EQ(shared.rows, (std::vector{a1, a2}));
    EXPECT_TRUE(shared.hasMixedStates());
    EXPECT_EQ(shared.state(), ConnectionDestination::mixed);
    EXPECT_EQ(shared.local(), "10.0.0.1");
    EXPECT_EQ(shared.localPort(), ConnectionDestination::mixed);
    EXPECT_EQ(shared.localAddresses(), std::vector<std::string>{"10.0.0.1"});
    EXPECT_EQ(shared.localPorts(), (std::vector<std::string>{"30", "10"}));
    EXPECT_FALSE(destinations[1].hasMixedStates());
    EXPECT_EQ(destinations[1].state(), "ESTABLISHED");
    EXPECT_TRUE(Presentation::grouped({}, ConnectionKey::pid, true).empty());
}

TEST(SocketRecords, CarryASocketThereAndBack) {
    SCSocket socket{};
    socket.pid = 7;
    std::copy_n("name", 4, socket.name);
    socket.protocol = IPPROTO_TCP;
    socket.ipVersion = 6;
    std::copy_n("fe80::1", 7, socket.local);
    socket.localPort = 22;
    socket.state = 4;
    socket.socketId = 99;
    EXPECT_EQ(toRecord(socket).remote, std::nullopt);
    socket.hasRemote = true;
    std::copy_n("fe80::2", 7, socket.remote);
    socket.remotePort = 443;
    const auto record = toRecord(socket);
    EXPECT_EQ(record.remote, "fe80::2");
    EXPECT_EQ(toRecord(toSocket(record)), record);

    SocketRecord hostile = record;
    hostile.pid = INT64_MAX;
    hostile.localPort = INT64_MIN;
    hostile.name.assign(1000, 'n');
    hostile.remote = std::string(1000, '1');
    const auto cut = toSocket(hostile);
    EXPECT_EQ(cut.pid, INT32_MAX);
    EXPECT_EQ(cut.localPort, INT32_MIN);
    EXPECT_EQ(std::string(cut.name), std::string(63, 'n'));
    EXPECT_EQ(std::string(cut.remote), std::string(47, '1'));
}

TEST(SocketRecords, ReadTheSocketsOfThisProcess) {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in any{};
    any.sin_family = AF_INET;
    ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&any), sizeof any), 0);
    size_t own = 0;
    for (const auto& record : SocketRecord::readAll())
        own += record.pid == ::getpid() && record.proto == IPPROTO_UDP;
    EXPECT_EQ(own, 1U);
    ::close(socket);
}

} // namespace
