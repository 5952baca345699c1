#include "inventory/ConnectionPresentation.h"

#include "HelperKit/SocketRecords.h"
#include "support/Joined.h"

#include <map>
#include <netinet/in.h>
#include <unistd.h>

namespace {

using namespace quarn;
using quarn::testing::joined;
using Presentation = ConnectionPresentation;
using Tone = CapsuleLabel::Tone;

Connection row(const char* local, const char* localPort, const char* remote = "*",
               const char* remotePort = "", const char* state = "ESTABLISHED") {
    return {"TCP", local, localPort, remote, remotePort, state, 42, "Browser", ""};
}

TEST(Connections, AreMadeFromRecords) {
    const SocketRecord tcp{7,  "from-record", IPPROTO_TCP, 4, "10.0.0.1",
                           22, "10.0.0.2",    50'000,      5, UINT64_MAX};
    const SocketRecord udp{8, "from-record", IPPROTO_UDP, 4, "", 53, std::nullopt, 0, -1, 0};
    SocketRecord odd = tcp;
    odd.tcpState = 11; // no such state
    odd.remote = "";
    odd.remotePort = 0;

    const auto rows = Presentation::connections({tcp, udp, odd}, {{7, "from-map"}});
    EXPECT_EQ(rows.at(0), (Connection{"TCP", "10.0.0.1", "22", "10.0.0.2", "50000", "CLOSE_WAIT", 7,
                                      "from-map", "18446744073709551615"}));
    EXPECT_EQ(rows.at(1), (Connection{"UDP", "", "53", "*", "", "", 8, "from-record", ""}));
    EXPECT_EQ(rows.at(2).state, "");
    EXPECT_FALSE(rows.at(2).hasPeer());
}

TEST(Connections, KnowTheirStatesByTheBsdNumbers) {
    SocketRecord record;
    record.proto = IPPROTO_TCP;
    std::string states;
    for (record.tcpState = 0; record.tcpState <= 10; ++record.tcpState)
        states += Presentation::connections({record}, {}).at(0).state + ' ';
    EXPECT_EQ(states,
              "CLOSED LISTEN SYN_SENT SYN_RECEIVED ESTABLISHED CLOSE_WAIT FIN_WAIT_1 CLOSING LAST_ACK "
              "FIN_WAIT_2 TIME_WAIT ");
    const std::tuple<const char*, const char*, Tone> shown[]{
        {"LISTEN", "listening (LISTEN)", Tone::info},
        {"SYN_RECEIVED", "accepting (SYN_RECEIVED)", Tone::neutral},
        {"ESTABLISHED", "connected (ESTABLISHED)", Tone::ok},
        {"CLOSE_WAIT", "closing (CLOSE_WAIT)", Tone::warn},
        {"TIME_WAIT", "just closed (TIME_WAIT)", Tone::warn},
        {"", "", Tone::neutral}};
    for (const auto& [state, text, tone] : shown) {
        EXPECT_EQ(Presentation::stateText(state), text);
        EXPECT_EQ(Presentation::tone(state), tone) << state;
    }
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
    std::map<char, Connection> rows{{'i', row("192.168.1.2", "50000", "93.184.216.34", "443")},
                                    {'l', row("192.168.1.2", "50001", "192.168.1.9", "22")},
                                    {'s', row("", "8080", "*", "", "LISTEN")},
                                    {'u', row("", "5353", "", "", "")}};
    rows['u'].proto = "UDP";
    rows['s'].pid = -1; // not known
    using enum ConnectionScope;
    using Protocol = ConnectionProtocol;
    const auto shown = [&](ConnectionScope scope, Protocol proto = Protocol::all, const char* query = "") {
        std::string letters;
        for (const auto& [letter, connection] : rows)
            if (Presentation::matches(connection, scope, proto, query)) letters += letter;
        return letters;
    };
    EXPECT_EQ(shown(all), "ilsu");
    EXPECT_EQ(shown(ConnectionScope{17}), "ilsu");
    EXPECT_EQ(shown(internet), "i");
    EXPECT_EQ(shown(listening), "s");
    EXPECT_EQ(shown(localNetwork), "l");
    EXPECT_EQ(shown(all, Protocol::tcp), "ils");
    EXPECT_EQ(shown(all, Protocol::udp), "u");
    const std::pair<const char*, const char*> queries[]{{"bROW", "ilsu"}, {"93.184", "i"}, {"168.1.2", "il"},
                                                        {"listen", "s"},  {"50000", "i"},  {"443", "i"},
                                                        {"42", "ilu"},    {"-1", ""},      {"nowhere", ""}};
    for (const auto& [query, letters] : queries)
        EXPECT_EQ(shown(all, Protocol::all, query), letters) << query;
    EXPECT_EQ(shown(internet, Protocol::all, "browser"), "i") << "the query does not widen the scope";
}

TEST(Keys, NameOneRowAndOneDestination) {
    auto a = row("10.0.0.1", "5", "93.184.216.34", "443");
    auto b = a;
    b.localPort = "6";
    EXPECT_NE(a.identity(), b.identity());
    EXPECT_EQ(a.destinationKey(), b.destinationKey());
    EXPECT_EQ(a.destinationKey(), "remote\03793.184.216.34\037443");
    a.socketID = b.socketID = "99";
    EXPECT_EQ(a.identity(), "42\03799");
    b.state = "CLOSE_WAIT";
    EXPECT_EQ(a.identity(), b.identity()) << "a row keeps its selection when its state changes";
    const auto listening = row("10.0.0.1", "5"), emptyPeer = row("10.0.0.1", "5", "");
    EXPECT_EQ(listening.destinationKey(), emptyPeer.destinationKey());
    EXPECT_EQ(listening.destinationKey(), "local\03710.0.0.1\0375");
}

TEST(Sorting, OrdersNumbersAsNumbersAndKeepsEqualRows) {
    const Connection a{"TCP", "10.0.0.10", "443", "fe80::2", "9", "LISTEN", 100, "alpha", ""};
    const Connection b{"UDP", "10.0.0.9", "80", "fe80::10", "", "CLOSED", 9, "Beta", ""};
    using enum ConnectionKey;
    const std::pair<ConnectionKey, bool> cases[]{{process, true},     {pid, false},       {proto, true},
                                                 {local, false},      {localPort, false}, {remote, true},
                                                 {remotePort, false}, {state, false}};
    for (const auto& [key, aFirst] : cases) {
        SCOPED_TRACE(static_cast<int>(key));
        EXPECT_EQ(Presentation::sorted({b, a}, key, true).at(0) == a, aFirst);
        EXPECT_EQ(Presentation::sorted({b, a}, key, false).at(1) == a, aFirst);
        EXPECT_EQ(Presentation::compare(a, a, key), std::weak_ordering::equivalent);
    }
    auto twin = a;
    twin.socketID = "2";
    EXPECT_EQ(Presentation::sorted({b, a, twin}, pid, true), (std::vector{b, a, twin}));
    EXPECT_EQ(Presentation::sorted({b, a, twin}, pid, false), (std::vector{a, twin, b}));
}

TEST(Grouping, ShowsWhatRowsShare) {
    const auto a = row("10.0.0.1", "30", "1.1.1.1", "443"),
               b = row("10.0.0.1", "10", "1.1.1.1", "443", "CLOSE_WAIT");
    const ConnectionDestination shared{"", {a, b}}, alone{"", {a}};
    EXPECT_EQ(joined(shared.hasMixedStates(), shared.state(), shared.local(), shared.localPort()),
              "1|mixed|10.0.0.1|mixed");
    EXPECT_EQ(joined(alone.hasMixedStates(), alone.state(), alone.localPort()), "0|ESTABLISHED|30");
    EXPECT_EQ(shared.localAddresses(), std::vector<std::string>{"10.0.0.1"});
    EXPECT_EQ(shared.localPorts(), (std::vector<std::string>{"30", "10"}));
    EXPECT_EQ(Presentation::grouped({a}, ConnectionKey::pid, true).at(0).name, "Browser");
    EXPECT_TRUE(Presentation::grouped({}, ConnectionKey::pid, true).empty());
}

TEST(SocketRecords, CarryASocketThereAndBack) {
    SocketRecord record{7, "name", IPPROTO_TCP, 6, "fe80::1", 22, "fe80::2", 443, 4, 99};
    EXPECT_EQ(toRecord(toSocket(record)), record);
    record.remote.reset();
    EXPECT_EQ(toRecord(toSocket(record)), record);

    record.pid = INT64_MAX;
    record.localPort = INT64_MIN;
    record.name.assign(1000, 'n');
    record.remote = std::string(1000, '1');
    const auto cut = toSocket(record);
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
