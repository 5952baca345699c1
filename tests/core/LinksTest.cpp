// Network links: the kernel's messages, what counts as hardware, and the kernel itself.
#include "OwnNetwork.h"
#include "core/InterfaceTotals.h"
#include "core/linux/Files.h"
#include "core/linux/LinkMessages.h"
#include "core/linux/LinkSocket.h"
#include "core/linux/LinkTraits.h"
#include "core/linux/NetDev.h"
#include "core/platform.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <arpa/inet.h>
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

TEST(LinkMessages, OneAnswer) {
    const std::string datagram =
        message(RTM_NEWLINK, NLM_F_MULTI, sequence, linkPayload(3, "br0", "bridge")) +
        linkMessage(2, "eth0") + statusMessage(NLMSG_DONE, 0);
    AnswerProgress progress;
    std::vector<LinkIdentity> links;
    parseLinks(datagram, sequence, progress, links);
    LinkIdentity bridge{3, "br0", IFF_UP, 0, "bridge", 0, "", "", false, 0};
    LinkIdentity port{2, "eth0", IFF_UP, 0, "", 0, "", "", false, 0};
    EXPECT_EQ(links, (std::vector{bridge, port}));
    EXPECT_TRUE(progress.ended && !progress.failed && !progress.interrupted);
}

TEST(LinkMessages, WhatCanBeWrongWithAnAnswer) {
    const std::string eth0 = linkMessage(2, "eth0"), done = statusMessage(NLMSG_DONE, 0);
    const auto changed = [&](size_t at, char value) {
        std::string bytes = eth0;
        bytes[at] = value;
        return bytes;
    };
    const struct {
        const char* lesson;
        std::string datagram;
        std::string outcome; ///< e, f, i for ended, failed, interrupted
        size_t links;
    } cases[] = {
        {"an empty datagram", "", "", 0},
        {"cut in the middle", eth0.substr(0, eth0.size() - 4), "f", 0},
        {"a piece of a header follows", eth0 + "\1\2\3", "f", 1},
        {"longer than the datagram", changed(0, '\x7f'), "f", 0},
        {"shorter than its header", changed(0, 8), "f", 0},
        {"an attribute beyond the message", changed(sizeof(nlmsghdr) + sizeof(ifinfomsg), '\x40'), "", 0},
        {"an answer to another request", linkMessage(2, "eth0", sequence - 1), "", 0},
        {"links came or went meanwhile", linkMessage(2, "eth0", sequence, NLM_F_DUMP_INTR) + done, "ei", 1},
        {"said at the end", statusMessage(NLMSG_DONE, 0, NLM_F_DUMP_INTR), "ei", 0},
        {"ended by an error", statusMessage(NLMSG_DONE, -5), "ef", 0},
        {"refused", statusMessage(NLMSG_ERROR, -1), "f", 0},
        {"an acknowledgement", statusMessage(NLMSG_ERROR, 0), "", 0},
        {"more after the end", done + eth0, "e", 0},
        {"no index", linkMessage(0, "eth0"), "", 0},
        {"no name", linkMessage(2, ""), "", 0},
        {"a name too long", linkMessage(2, std::string(IF_NAMESIZE, 'x')), "", 0},
        {"no room for a header", message(RTM_NEWLINK, 0, sequence, "abc"), "", 0},
    };
    for (const auto& c : cases) {
        AnswerProgress progress;
        std::vector<LinkIdentity> links;
        parseLinks(c.datagram, sequence, progress, links);
        EXPECT_EQ(std::string(progress.ended ? "e" : "") + (progress.failed ? "f" : "") +
                      (progress.interrupted ? "i" : ""),
                  c.outcome)
            << c.lesson;
        EXPECT_EQ(links.size(), c.links) << c.lesson;
    }
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
    const auto whole = counted(bytesOf(stats) + "fields of a later kernel");
    ASSERT_EQ(whole.size(), 1u);
    EXPECT_EQ(whole[0].index, 9u);
    EXPECT_EQ(whole[0].rxBytes, 5'000'000'000u);
    EXPECT_EQ(whole[0].txBytes, 4u);
    EXPECT_EQ(whole[0].rxPackets, 1u);
    EXPECT_EQ(whole[0].txPackets, 2u);
    EXPECT_EQ(counted(bytesOf(stats).substr(0, 31)).size(), 0u);
}

TEST(LinkTraits, TypesOfLinks) {
    const struct {
        const char* lesson;
        LinkTraits traits;
        uint8_t type;
    } cases[] = {
        {"a wired port", {ARPHRD_ETHER, "", "", true, false}, linkTypeEthernet},
        {"a wireless port", {ARPHRD_ETHER, "", "wlan", true, false}, linkTypeEthernet},
        {"InfiniBand", {ARPHRD_INFINIBAND, "ipoib", "", true, false}, linkTypeEthernet},
        {"a modem", {ARPHRD_RAWIP, "", "wwan", true, false}, linkTypeCellular},
        {"a modem by its kind", {ARPHRD_NONE, "wwan", "wwan", false, false}, linkTypeCellular},
        {"a bridge", {ARPHRD_ETHER, "bridge", "bridge", false, false}, linkTypeOther},
        {"made of another link", {ARPHRD_ETHER, "macvlan", "", true, false}, linkTypeOther},
        {"no device, no kind: a tap of old", {ARPHRD_ETHER, "", "", false, false}, linkTypeOther},
        {"a monitor of the air", {ARPHRD_IEEE80211_RADIOTAP, "", "wlan", true, false}, linkTypeOther},
        {"a field bus", {ARPHRD_CAN, "can", "", true, false}, linkTypeOther},
        {"a port of a switch", {ARPHRD_ETHER, "", "dsa", true, false}, linkTypeOther},
        {"the fast half of a virtual port", {ARPHRD_ETHER, "", "", true, true}, linkTypeOther},
    };
    for (const auto& c : cases) EXPECT_EQ(linkType(c.traits), c.type) << c.lesson;
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
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].name, "eth0");
    EXPECT_EQ(lines[0].rxBytes, 5'000'000'000u);
    EXPECT_EQ(lines[0].txBytes, 9u);
    EXPECT_EQ(lines[0].collisions, 14u);
    EXPECT_EQ(lines[1].name, "eth0:1");
}

TEST(CapturedLinks, OnlyThePortOfAContainerHostCounts) {
    const auto readers = openReaders(SystemRoot(QUARN_FIXTURES "/hosts/one-editor"));
    std::vector<Link> links;
    ASSERT_TRUE(listLinks(*readers, links));
    ASSERT_EQ(links.size(), 4u);
    std::string counted;
    for (const auto& link : links)
        if (countsInterface(link.name, link.flags, link.type)) counted += link.name;
    EXPECT_EQ(counted, "eth0");
    EXPECT_EQ(links[3].rxBytes, 874354587u);
    EXPECT_EQ(links[3].txPackets, 732147u);
    EXPECT_EQ(links[1].flags & linkLoopback, unsigned{linkLoopback}) << "known by its name";
}

uint64_t loopbackBytes(const std::vector<LinkIdentity>& identities,
                       const std::vector<LinkCounters>& counters) {
    for (const auto& c : counters)
        for (const auto& identity : identities)
            if (identity.index == c.index && identity.name == "lo") return c.rxBytes;
    return 0;
}

TEST(LinkSocket, AgreesWithTheTableThatTheKernelPrints) {
    const auto loopback = [] {
        for (const auto& line : parseNetDev(readTable("/proc/net/dev").value_or("")))
            if (line.name == "lo") return line.rxBytes;
        return uint64_t{0};
    };
    LinkSocket socket;
    const uint64_t before = loopback();
    ASSERT_TRUE(socket.read());
    const uint64_t after = loopback();
    const uint64_t read = loopbackBytes(socket.identities(), socket.counters());
    EXPECT_GE(read, before);
    EXPECT_LE(read, after);
}

std::string namesOf(const std::vector<LinkIdentity>& identities) {
    std::string names;
    for (const auto& identity : identities) names += identity.name + ' ';
    return names;
}

void followLinksThatChange() {
    LinkSocket socket;
    ASSERT_TRUE(socket.read());
    const std::string atFirst = namesOf(socket.identities());
    const uint64_t revision = socket.revision();
    ASSERT_TRUE(socket.read());
    EXPECT_EQ(socket.revision(), revision) << "names are not asked again without need";

    if (!addBridge("quarn0")) GTEST_SKIP() << "this kernel makes no bridges";
    ASSERT_TRUE(socket.read());
    EXPECT_GT(socket.revision(), revision);
    EXPECT_EQ(namesOf(socket.identities()), atFirst + "quarn0 ");
    EXPECT_EQ(socket.identities().back().kind, "bridge");
    EXPECT_EQ(socket.counters().size(), socket.identities().size());

    ifinfomsg link{};
    link.ifi_index = static_cast<int>(socket.identities().back().index);
    ASSERT_TRUE(
        changeNetwork(RTM_NEWLINK, 0, bytesOf(link) + attribute(IFLA_IFNAME, std::string("other0") + '\0')));
    ASSERT_TRUE(socket.read());
    EXPECT_EQ(namesOf(socket.identities()), atFirst + "other0 ");

    ASSERT_TRUE(changeNetwork(RTM_DELLINK, 0, bytesOf(link)));
    ASSERT_TRUE(socket.read());
    EXPECT_EQ(namesOf(socket.identities()), atFirst);
    EXPECT_EQ(socket.counters().size(), socket.identities().size());
}

void countWhatTheLoopbackCarries() {
    ASSERT_TRUE(switchOn(1));
    LinkSocket socket;
    ASSERT_TRUE(socket.read());
    const uint64_t before = loopbackBytes(socket.identities(), socket.counters());

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const scutil::UniqueFd receiver(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(receiver.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::getsockname(receiver.get(), reinterpret_cast<sockaddr*>(&address), &length), 0);
    const std::string payload(1000, 'x');
    ASSERT_EQ(::sendto(receiver.get(), payload.data(), payload.size(), 0,
                       reinterpret_cast<const sockaddr*>(&address), sizeof address),
              1000);
    ASSERT_TRUE(socket.read());
    constexpr uint64_t headers = 20 + 8; // IP and UDP
    EXPECT_EQ(loopbackBytes(socket.identities(), socket.counters()) - before, 1000 + headers);
}

TEST(LinkSocket, FollowsLinksThatChange) {
    if (!inOwnNetwork(followLinksThatChange)) GTEST_SKIP() << "a network namespace needs root";
}

TEST(LinkSocket, CountsEveryByte) {
    if (!inOwnNetwork(countWhatTheLoopbackCarries)) GTEST_SKIP() << "a network namespace needs root";
}

} // namespace
