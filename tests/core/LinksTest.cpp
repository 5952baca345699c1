// Network links: the kernel's messages, what counts as hardware, the kernel itself, and the traffic.
#include "NetlinkSupport.h"
#include "core/InterfaceTotals.h"
#include "core/NetSampler.h"
#include "core/linux/Files.h"
#include "core/linux/LinkMessages.h"
#include "core/linux/LinkSocket.h"
#include "core/linux/LinkTraits.h"
#include "core/linux/NetDev.h"
#include "core/platform.h"
#include "support/Joined.h"
#include "support/TempRoot.h"

#include <arpa/inet.h>
#include <array>
#include <net/if_arp.h>

namespace {

using namespace sysinfo;
using namespace sysinfo::platform;
using namespace quarn::testing;

constexpr uint32_t sequence = 7;

std::string linkPayload(int index, const std::string& name, const std::string& kind = "") {
    ifinfomsg header{};
    header.ifi_index = index;
    header.ifi_flags = IFF_UP;
    std::string payload = bytesOf(header) + attribute(IFLA_IFNAME, name + '\0');
    if (!kind.empty()) payload += attribute(IFLA_LINKINFO, attribute(IFLA_INFO_KIND, kind + '\0'));
    return payload;
}

std::string linkMessage(int index, const std::string& name, uint32_t number = sequence, uint16_t flags = 0) {
    return message(RTM_NEWLINK, flags, number, linkPayload(index, name));
}

std::string statusMessage(uint16_t type, int32_t error, uint16_t flags = 0) {
    return message(type, flags, sequence, bytesOf(error));
}

/// What is read of a datagram: 'e'nded, 'f'ailed or 'i'nterrupted, and the links with their kinds.
std::string outcome(const std::string& datagram) {
    AnswerProgress progress;
    std::vector<LinkIdentity> links;
    parseLinks(datagram, sequence, progress, links);
    std::string text = progress.ended ? "e" : "";
    text += progress.failed ? "f" : "";
    text += progress.interrupted ? "i" : "";
    for (const auto& link : links) {
        EXPECT_EQ(link.interfaceFlags, unsigned{IFF_UP});
        text += ' ' + std::to_string(link.index) + ' ' + link.name + ' ' + link.kind;
    }
    return text;
}

TEST(LinkMessages, WholeAnswersAndWhatCanBeWrongWithThem) {
    const std::string eth0 = linkMessage(2, "eth0"), done = statusMessage(NLMSG_DONE, 0);
    const std::string br0 = message(RTM_NEWLINK, NLM_F_MULTI, sequence, linkPayload(3, "br0", "bridge"));
    const auto changed = [&](size_t at, char value) {
        std::string bytes = eth0;
        bytes[at] = value;
        return bytes;
    };
    EXPECT_EQ(outcome(br0 + eth0 + done), "e 3 br0 bridge 2 eth0 ");
    EXPECT_EQ(outcome(""), "");
    EXPECT_EQ(outcome(eth0.substr(0, eth0.size() - 4)), "f") << "cut in the middle";
    EXPECT_EQ(outcome(eth0 + "\1\2\3"), "f 2 eth0 ") << "a piece of a header follows";
    EXPECT_EQ(outcome(changed(0, '\x7f')), "f") << "longer than the datagram";
    EXPECT_EQ(outcome(changed(0, 8)), "f") << "shorter than its header";
    EXPECT_EQ(outcome(changed(sizeof(nlmsghdr) + sizeof(ifinfomsg), '\x40')), "") << "a long attribute";
    EXPECT_EQ(outcome(linkMessage(2, "eth0", sequence - 1)), "") << "an answer to another request";
    EXPECT_EQ(outcome(linkMessage(2, "eth0", sequence, NLM_F_DUMP_INTR) + done), "ei 2 eth0 ");
    EXPECT_EQ(outcome(statusMessage(NLMSG_DONE, 0, NLM_F_DUMP_INTR)), "ei") << "changes meanwhile";
    EXPECT_EQ(outcome(statusMessage(NLMSG_DONE, -5)), "ef") << "ended by an error";
    EXPECT_EQ(outcome(statusMessage(NLMSG_ERROR, -1)), "f") << "refused";
    EXPECT_EQ(outcome(statusMessage(NLMSG_ERROR, 0)), "") << "an acknowledgement";
    EXPECT_EQ(outcome(done + eth0), "e") << "more after the end";
    EXPECT_EQ(outcome(linkMessage(0, "eth0")), "") << "no index";
    EXPECT_EQ(outcome(linkMessage(2, "")), "") << "no name";
    EXPECT_EQ(outcome(linkMessage(2, std::string(IF_NAMESIZE, 'x'))), "") << "a name too long";
    EXPECT_EQ(outcome(message(RTM_NEWLINK, 0, sequence, "abc")), "") << "no room for a header";
}

TEST(LinkMessages, Counters) {
    rtnl_link_stats64 stats{};
    stats.rx_packets = 1;
    stats.tx_packets = 2;
    stats.rx_bytes = 5'000'000'000;
    stats.tx_bytes = 4;
    if_stats_msg header{};
    header.ifindex = 9;
    const auto counted = [&](const std::string& value) {
        AnswerProgress progress;
        std::vector<LinkCounters> counters;
        const auto payload = bytesOf(header) + attribute(IFLA_STATS_LINK_64, value);
        parseLinkCounters(message(RTM_NEWSTATS, 0, sequence, payload), sequence, progress, counters);
        return counters;
    };
    const auto whole = counted(bytesOf(stats) + "fields of a later kernel").at(0);
    EXPECT_EQ(joined(whole.index, whole.rxPackets, whole.txPackets, whole.rxBytes, whole.txBytes),
              "9|1|2|5000000000|4");
    EXPECT_EQ(counted(bytesOf(stats).substr(0, 31)).size(), 0u);
}

TEST(LinkTraits, TypesOfLinks) {
    const std::pair<LinkTraits, uint8_t> cases[] = {
        {{ARPHRD_ETHER, "", "", true, false}, linkTypeEthernet},
        {{ARPHRD_ETHER, "", "wlan", true, false}, linkTypeEthernet},
        {{ARPHRD_INFINIBAND, "ipoib", "", true, false}, linkTypeEthernet},
        {{ARPHRD_RAWIP, "", "wwan", true, false}, linkTypeCellular},
        {{ARPHRD_NONE, "wwan", "wwan", false, false}, linkTypeCellular},
        {{ARPHRD_ETHER, "bridge", "bridge", false, false}, linkTypeOther},
        {{ARPHRD_ETHER, "macvlan", "", true, false}, linkTypeOther}, // made of another link
        {{ARPHRD_ETHER, "", "", false, false}, linkTypeOther},       // a tap of old
        {{ARPHRD_IEEE80211_RADIOTAP, "", "wlan", true, false}, linkTypeOther},
        {{ARPHRD_CAN, "can", "", true, false}, linkTypeOther},
        {{ARPHRD_ETHER, "", "dsa", true, false}, linkTypeOther}, // a port of a switch
        {{ARPHRD_ETHER, "", "", true, true}, linkTypeOther},     // the fast half of a virtual port
    };
    for (const auto& [traits, type] : cases)
        EXPECT_EQ(linkType(traits), type) << traits.hardwareType << traits.kind << traits.deviceType;
}

TEST(LinkTraits, ReadFromSysfs) {
    TempRoot machine;
    const auto link = [&](const std::string& name, const std::string& place, std::string_view files) {
        machine.link("sys/class/net/" + name, "../../devices/" + place).files("sys/devices/" + place, files);
    };
    const std::string eth1 = "pci0000:00/0000:00:03.0/net/eth1", eth2 = "pci0000:00/0000:00:04.0/net/eth2";
    link("eth0", "vmbus/1/net/eth0", "type=1");
    link("eth1", eth1, "type=1");
    link("br0", "virtual/net/br0", "uevent=DEVTYPE=bridge\nINTERFACE=br0");
    link("eth2", eth2, "type=1");
    machine.link("sys/devices/" + eth1 + "/master", "../../../../vmbus/1/net/eth0")
        .link("sys/devices/" + eth2 + "/master", "../../../../virtual/net/br0")
        .files("sys/class/net/wwp0", "uevent=DEVTYPE=wwan;device/vendor=0x8086");
    const auto typeOf = [&](const char* name) { return linkType(readLinkTraits(machine.root(), name)); };
    EXPECT_EQ(typeOf("eth0"), linkTypeEthernet);
    EXPECT_EQ(typeOf("eth1"), linkTypeOther) << "eth0 counts its traffic already";
    EXPECT_EQ(typeOf("br0"), linkTypeOther);
    EXPECT_EQ(typeOf("eth2"), linkTypeEthernet) << "the bridge above does not count, its port does";
    EXPECT_EQ(typeOf("wwp0"), linkTypeCellular);
    EXPECT_EQ(typeOf("enp3s0"), linkTypeEthernet) << "nothing captured: the name decides";
    EXPECT_EQ(typeOf("docker0"), linkTypeOther);
}

TEST(NetDev, LinesOfTheTable) {
    const auto lines = parseNetDev("Inter-|   Receive  |  Transmit\n face |bytes    packets\n"
                                   "  eth0:5000000000 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n"
                                   "eth0:1: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n"
                                   "short: 1 2 3\nwords: a b c d e f g h i j k l m n o p\n: 1 2\n\n");
    EXPECT_EQ(joinedEach(lines, &NetDevLine::name, &NetDevLine::rxBytes, &NetDevLine::txBytes,
                         &NetDevLine::collisions),
              "eth0|5000000000|9|14 eth0:1|1|9|14 ");
}

TEST(CapturedLinks, OnlyThePortOfAContainerHostCounts) {
    const auto readers = openReaders(SystemRoot(QUARN_FIXTURES "/hosts/one-editor"));
    std::vector<Link> links;
    ASSERT_TRUE(listLinks(*readers, links));
    const auto counts = [](const Link& link) { return countsInterface(link.name, link.flags, link.type); };
    const auto loopback = [](const Link& link) { return (link.flags & linkLoopback) != 0; }; // by its name
    EXPECT_EQ(
        joinedEach(links, &Link::name, counts, loopback, &Link::rxBytes, &Link::txPackets),
        "vethf345468|0|0|648|5 lo|0|1|1664039048|1566805 docker0|0|0|2568|5 eth0|1|0|874354587|732147 ");
}

uint64_t loopbackBytes(LinkSocket& socket) {
    EXPECT_TRUE(socket.read());
    for (const auto& identity : socket.identities())
        for (const auto& counters : socket.counters())
            if (identity.index == counters.index && identity.name == "lo") return counters.rxBytes;
    return 0;
}

TEST(LinkSocket, AgreesWithTheTableThatTheKernelPrints) {
    const auto loopback = [] {
        for (const auto& line : parseNetDev(readTable("/proc/net/dev").value_or("")))
            if (line.name == "lo") return line.rxBytes;
        return uint64_t{0};
    };
    LinkSocket socket;
    const uint64_t before = loopback(), read = loopbackBytes(socket), after = loopback();
    EXPECT_GE(read, before);
    EXPECT_LE(read, after);
}

std::string namesIn(LinkSocket& socket) {
    EXPECT_TRUE(socket.read());
    EXPECT_EQ(socket.counters().size(), socket.identities().size());
    return joinedEach(socket.identities(), &LinkIdentity::name, &LinkIdentity::kind);
}

TEST(LinkSocket, FollowsLinksThatChange) {
    inOwnNetwork([] {
        LinkSocket socket;
        const std::string atFirst = namesIn(socket);
        const uint64_t revision = socket.revision();
        EXPECT_EQ(namesIn(socket), atFirst);
        EXPECT_EQ(socket.revision(), revision) << "names are not asked again without need";

        if (!addBridge("quarn0")) GTEST_SKIP() << "this kernel makes no bridges";
        EXPECT_EQ(namesIn(socket), atFirst + "quarn0|bridge ");
        EXPECT_GT(socket.revision(), revision);

        ifinfomsg link{};
        link.ifi_index = static_cast<int>(socket.identities().back().index);
        const auto name = attribute(IFLA_IFNAME, std::string("other0") + '\0');
        ASSERT_TRUE(changeNetwork(RTM_NEWLINK, 0, bytesOf(link) + name));
        EXPECT_EQ(namesIn(socket), atFirst + "other0|bridge ");
        ASSERT_TRUE(changeNetwork(RTM_DELLINK, 0, bytesOf(link)));
        EXPECT_EQ(namesIn(socket), atFirst);
    });
}

TEST(LinkSocket, CountsEveryByte) {
    inOwnNetwork([] {
        ASSERT_TRUE(switchOn(1));
        LinkSocket socket;
        const uint64_t before = loopbackBytes(socket);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(9);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const auto* to = reinterpret_cast<const sockaddr*>(&address);
        const scutil::UniqueFd sender(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        const scutil::UniqueFd receiver(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        ASSERT_EQ(::bind(receiver.get(), to, sizeof address), 0);
        const std::string payload(1000, 'x');
        ASSERT_EQ(::sendto(sender.get(), payload.data(), payload.size(), 0, to, sizeof address), 1000);
        constexpr uint64_t headers = 20 + 8; // IP and UDP
        EXPECT_EQ(loopbackBytes(socket) - before, 1000 + headers);
    });
}

TEST(InterfaceTotals, IncrementsOfOneInterface) {
    // Bytes received and sent, packets received and sent.
    const auto added = [](const std::array<uint64_t, 4>& before, const std::array<uint64_t, 4>& after) {
        InterfaceTotals totals;
        const auto add = [&](const std::array<uint64_t, 4>& now) {
            return totals.add({{2, "en0", now[0], now[1], now[2], now[3]}});
        };
        const auto [rx, tx, rxPackets, txPackets] = add(before);
        EXPECT_EQ(rx, before[0]) << "the totals start at the counters";
        const auto end = add(after);
        return joined(end.rxBytes - rx, end.txBytes - tx, end.rxPackets - rxPackets,
                      end.txPackets - txPackets);
    };
    constexpr uint64_t below = 4'294'967'000, past = 5'000'000'000; // four GiB
    EXPECT_EQ(added({100, 200, 3, 4}, {150, 260, 5, 5}), "50|60|2|1");
    EXPECT_EQ(added({below, 0, 0, 0}, {500, 0, 0, 0}), "796|0|0|0") << "a 32-bit counter wrapped";
    EXPECT_EQ(added({past, 0, 9, 0}, {500, 0, 9, 0}), "0|0|0|0") << "64 bits never wrap";
    EXPECT_EQ(added({below, 7, 10, 7}, {500, 9, 4, 9}), "500|9|4|9") << "the driver counts anew";
    EXPECT_EQ(added({7, past, 7, 10}, {9, 500, 9, 4}), "9|500|9|4") << "the same when sending";
    EXPECT_EQ(added({8, past, 8, 10}, {9, 500, 9, 10}), "1|0|1|0") << "only bytes fell";
}

TEST(InterfaceTotals, InterfacesThatComeAndGo) {
    InterfaceTotals totals;
    totals.add({{1, "a", 1000}, {2, "b", 10}});
    EXPECT_EQ(totals.add({{1, "a", 1001}, {3, "late", 5'000'000}}).rxBytes, 1011u) << "a baseline only";
    EXPECT_EQ(totals.add({{1, "a", 1001}, {3, "late", 5'000'007}}).rxBytes, 1018u);
    EXPECT_EQ(totals.add({{3, "renamed", 6'000'000}}).rxBytes, 1018u) << "the same index is not the same";
    EXPECT_EQ(totals.add({}).rxBytes, 1018u);
    EXPECT_EQ(totals.add({{1, "a", 2000}}).rxBytes, 1018u) << "back again is new again";

    InterfaceTotals lateStart;
    lateStart.add({});
    EXPECT_EQ(lateStart.add({{1, "a", 2000}}).rxBytes, 0u);
}

TEST(InterfaceTotals, WhichInterfacesCount) {
    for (const char* name : {"en0", "wlp3s0"}) EXPECT_TRUE(countsInterface(name, linkUp, linkTypeEthernet));
    for (const char* name : {"", "awdl0", "llw0", "bridge100", "ap1", "bond0", "vlan7"})
        EXPECT_FALSE(countsInterface(name, linkUp, linkTypeEthernet)) << name;
    EXPECT_TRUE(countsInterface("en0", 0, linkTypeEthernet)) << "switched off";
    EXPECT_FALSE(countsInterface("lo0", linkLoopback, linkTypeEthernet));
    EXPECT_FALSE(countsInterface("en0", linkPointToPoint, linkTypeEthernet));
    EXPECT_FALSE(countsInterface("utun3", linkUp, linkTypeOther));
    EXPECT_TRUE(countsInterface("bridge100", linkPointToPoint, linkTypeCellular));
    EXPECT_FALSE(countsInterface("wwan0", linkLoopback, linkTypeCellular));
}

TEST(NetSampler, RatesOverTheTimeBetweenSamples) {
    const auto links = [](uint64_t rx, uint64_t tx) {
        Link counted{2, "en0", linkUp, linkTypeEthernet, rx, tx, rx / 10, 0};
        Link tunnel{3, "tun0", linkUp, linkTypeOther, 999, 999, 9, 9};
        return std::vector{counted, tunnel};
    };
    NetSampler sampler;
    const auto shown = [&](uint64_t rx, uint64_t ms) {
        const SCNet net = sampler.advance(links(rx, 50), ms * 1'000'000);
        return joined(net.rxBytes, net.rxRate, net.rxPacketRate, net.txRate);
    };
    EXPECT_EQ(shown(1000, 5000), "1000|0|0|0");
    EXPECT_EQ(shown(3000, 5500), "3000|4000|400|0");
    EXPECT_EQ(shown(9000, 5000), "9000|0|0|0") << "time did not go on";
}

TEST(NetSampler, AFailedListingRepeatsTheLastSample) {
    NetSampler sampler;
    sampler.advance({{2, "en0", 0, linkTypeEthernet, 0, 0, 0, 0}}, 1'000'000'000);
    const SCNet last = sampler.advance({{2, "en0", 0, linkTypeEthernet, 700, 0, 7, 0}}, 2'000'000'000);
    const auto nowhere = openReaders(SystemRoot("/nonexistent"));
    EXPECT_EQ(sampler.sample(*nowhere).rxRate, last.rxRate);
    EXPECT_EQ(sampler.sample(*nowhere).rxBytes, 700u);
}

} // namespace
