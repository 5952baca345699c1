// The interface listing: texts, what is left out, captured machines, and the kernel itself.
#include "core/InterfaceList.h"
#include "OwnNetwork.h"
#include "core/linux/AddressSocket.h"
#include "core/linux/LinkMedia.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/ethtool.h>
#include <linux/if_addr.h>
#include <set>

namespace {

using namespace sysinfo;
using namespace quarn::testing;
using platform::InterfaceAddress;
using platform::LinkSettings;
using platform::Media;

TEST(Media, TextsOfPorts) {
    constexpr bool on = true, off = false;
    struct Case {
        LinkSettings settings;
        bool active;
        const char* text;
        uint32_t speed;
    };
    constexpr uint32_t unknown = static_cast<uint32_t>(SPEED_UNKNOWN);
    for (const auto& c : {
             Case{{10, DUPLEX_HALF, PORT_TP, AUTONEG_ENABLE}, on, "10baseT half-duplex", 10},
             Case{{100, DUPLEX_FULL, PORT_TP, AUTONEG_ENABLE}, on, "100baseTX full-duplex", 100},
             Case{{1000, DUPLEX_FULL, PORT_TP, AUTONEG_ENABLE}, on, "1000baseT full-duplex", 1000},
             Case{{2500, DUPLEX_FULL, PORT_TP, AUTONEG_ENABLE}, on, "2500baseT full-duplex", 2500},
             Case{{5000, DUPLEX_FULL, PORT_TP, AUTONEG_DISABLE}, on, "5000baseT full-duplex", 5000},
             Case{{10000, DUPLEX_FULL, PORT_TP, AUTONEG_ENABLE}, on, "10GbaseT full-duplex", 10000},
             Case{{10000, DUPLEX_FULL, PORT_FIBRE, AUTONEG_DISABLE}, on, "full-duplex", 10000},
             Case{{40000, DUPLEX_FULL, PORT_DA, AUTONEG_DISABLE}, on, "full-duplex", 40000},
             Case{{25000, DUPLEX_UNKNOWN, PORT_TP, AUTONEG_DISABLE}, on, "", 25000},
             Case{{unknown, DUPLEX_UNKNOWN, PORT_TP, AUTONEG_ENABLE}, off, "auto (no link)", 0},
             Case{{unknown, DUPLEX_UNKNOWN, PORT_OTHER, AUTONEG_DISABLE}, on, "", 0},
             Case{{unknown, DUPLEX_UNKNOWN, PORT_OTHER, AUTONEG_DISABLE}, off, "no link", 0},
             Case{{unknown, DUPLEX_FULL, PORT_TP, AUTONEG_DISABLE}, off, "full-duplex (no link)", 0},
         }) {
        const Media media = platform::wiredMedia(c.settings, c.active);
        EXPECT_EQ(mediaText(media), c.text);
        EXPECT_EQ(media.speedMbps, c.speed) << c.text;
    }
    Media media;
    EXPECT_EQ(mediaText(media), "");
    media.kind = Media::Kind::wireless;
    EXPECT_EQ(mediaText(media), "IEEE 802.11 (no link)");
    media.active = true;
    EXPECT_EQ(mediaText(media), "IEEE 802.11");
}

InterfaceAddress address(int family, const char* text, uint8_t prefixLength) {
    InterfaceAddress result;
    result.family = family;
    result.prefixLength = prefixLength;
    EXPECT_EQ(::inet_pton(family, text, result.bytes.data()), 1) << text;
    return result;
}

TEST(Interface, AddressesInTheirOrder) {
    platform::Interface source;
    source.flags = platform::linkBroadcast;
    source.addresses = {address(AF_INET6, "fe80::1", 64), address(AF_INET, "10.0.0.1", 8),
                        address(AF_INET6, "2001:db8::5", 64), address(AF_INET6, "febf::1", 64),
                        address(AF_INET, "192.168.7.9", 23)};
    source.addresses.back().broadcast = {192, 168, 7, 255};
    const auto described = describeInterface(source);
    EXPECT_EQ(described.addrs, (std::vector<std::string>{"192.168.7.9", "10.0.0.1", "2001:db8::5"}));
    EXPECT_EQ(described.netmask, "255.255.254.0");
    EXPECT_EQ(described.broadcast, "192.168.7.255");
    source.flags = platform::linkPointToPoint;
    EXPECT_EQ(describeInterface(source).broadcast, "");

    for (const auto& [length, mask] : {std::pair<uint8_t, const char*>{0, "0.0.0.0"},
                                       {1, "128.0.0.0"},
                                       {32, "255.255.255.255"},
                                       {200, "255.255.255.255"}}) {
        source.addresses = {address(AF_INET, "1.2.3.4", length)};
        EXPECT_EQ(describeInterface(source).netmask, mask);
    }
    EXPECT_EQ(ntop(AF_UNIX, "1234"), "");
}

TEST(Interface, HardwareAddressAndFlags) {
    using Address = std::optional<platform::Interface::HardwareAddress>;
    const Address own{{0x52, 0x54, 0, 0, 0xab, 1}}, placeholder{{2, 0, 0, 0, 0, 0}}, real{{4, 5, 6, 7, 8, 9}};
    struct Case {
        Address current, permanent;
        const char* mac;
    };
    for (const auto& c : {
             Case{own, {}, "52:54:00:00:ab:01"},
             Case{own, real, "52:54:00:00:ab:01"},
             Case{placeholder, real, "04:05:06:07:08:09"},
             Case{placeholder, {}, "02:00:00:00:00:00"},
             Case{{}, real, "04:05:06:07:08:09"},
             Case{{}, {}, ""},
         }) {
        platform::Interface source;
        source.hardwareAddress = c.current;
        source.permanentAddress = c.permanent;
        EXPECT_EQ(describeInterface(source).mac, c.mac);
    }
    platform::Interface source;
    source.flags = platform::linkUp | platform::linkMulticast;
    EXPECT_FALSE(describeInterface(source).up) << "switched on, but nothing plugged in";
    EXPECT_TRUE(describeInterface(source).multicastCapable);
    source.flags |= platform::linkRunning;
    EXPECT_TRUE(describeInterface(source).up);
}

std::string addressMessage(uint8_t family, uint8_t prefixLength, const std::string& attributes) {
    ifaddrmsg header{};
    header.ifa_family = family;
    header.ifa_prefixlen = prefixLength;
    header.ifa_index = 3;
    return message(RTM_NEWADDR, 0, 1, bytesOf(header) + attributes);
}

TEST(AddressMessages, OwnAndPeerAndRubbish) {
    const std::string own("\x0a\0\0\1", 4), peer("\x0a\0\0\2", 4), longAddress(16, 'x');
    struct Case {
        std::string bytes;
        size_t count;
        uint8_t last;
        const char* lesson;
    };
    for (const auto& c : {
             Case{addressMessage(AF_INET, 24, attribute(IFA_ADDRESS, own)), 1, 1, "plain"},
             Case{addressMessage(AF_INET, 32, attribute(IFA_ADDRESS, peer) + attribute(IFA_LOCAL, own)), 1, 1,
                  "the other end comes first"},
             Case{addressMessage(AF_INET, 24, attribute(IFA_LOCAL, longAddress)), 0, 0, "of another family"},
             Case{addressMessage(AF_INET6, 24, attribute(IFA_ADDRESS, own)), 0, 0, "too short"},
             Case{addressMessage(AF_UNIX, 24, attribute(IFA_ADDRESS, own)), 0, 0, "no internet address"},
             Case{addressMessage(AF_INET, 24, ""), 0, 0, "no address"},
             Case{message(RTM_NEWADDR, 0, 1, "abc"), 0, 0, "no room for a header"},
         }) {
        platform::AnswerProgress progress;
        std::vector<platform::LinkAddress> addresses;
        platform::parseAddresses(c.bytes, 1, progress, addresses);
        ASSERT_EQ(addresses.size(), c.count) << c.lesson;
        if (c.count == 0) continue;
        EXPECT_EQ(addresses[0].index, 3u);
        EXPECT_EQ(addresses[0].address.bytes[3], c.last) << c.lesson;
    }
}

const NetInterface* find(const std::vector<NetInterface>& list, const std::string& name) {
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const auto& interface) { return interface.name == name; });
    return found == list.end() ? nullptr : &*found;
}

TEST(CapturedInterfaces, AGigabitPort) {
    const auto list = readInterfaces(SystemRoot(QUARN_FIXTURES "/hosts/one-editor"));
    ASSERT_EQ(list.size(), 3u) << "without the loopback";
    const auto* port = find(list, "eth0");
    ASSERT_TRUE(port);
    EXPECT_EQ(port->media, "1000baseT full-duplex");
    EXPECT_EQ(port->linkSpeedMbps, 1000);
    EXPECT_EQ(port->mac, "01:01:01:01:01:01");
    EXPECT_EQ(port->mtu, 1500);
    EXPECT_TRUE(port->up && port->multicastCapable && !port->loopback);
    EXPECT_EQ(port->rxBytes, 874354587u);
    EXPECT_EQ(port->txPackets, 732147u);
}

TEST(CapturedInterfaces, UnpluggedWirelessAndIdle) {
    TempRoot machine;
    const auto port = [&](const std::string& name) {
        const std::string folder = "sys/class/net/" + name + "/";
        machine.write(folder + "type", "1\n").write(folder + "flags", "0x1003\n").folder(folder + "device");
        return folder;
    };
    const std::string unplugged = port("eno2"), wireless = port("wlan0"), bond = "sys/class/net/bond0/";
    machine.write(unplugged + "speed", "-1\n")
        .write(unplugged + "duplex", "unknown\n")
        .write(unplugged + "carrier", "0\n")
        .write(unplugged + "operstate", "down\n")
        .write(unplugged + "address", "not an address\n")
        .write(wireless + "operstate", "down\n")
        .write(wireless + "uevent", "DEVTYPE=wlan\nINTERFACE=wlan0\n")
        .write(bond + "speed", "2000\n")
        .write(bond + "duplex", "full\n")
        .write(bond + "operstate", "up\n")
        .folder(bond + "bonding");
    const auto line = [](const std::string& name, int bytes, int drops) {
        return name + ": " + std::to_string(bytes) + " 2 3 " + std::to_string(drops) +
               " 0 0 0 0 9 8 7 0 0 6 0 0\n";
    };
    machine.write("proc/net/dev", line("wlan0", 5, 4) + line("lo", 99, 0) + line("eno2", 1, 0) +
                                      line("bond0", 1, 0) + "idle0: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    const auto list = readInterfaces(machine.root());
    ASSERT_EQ(list.size(), 3u) << "neither the loopback nor what never carried a byte";
    EXPECT_EQ(list[0].name, "bond0");
    EXPECT_EQ(list[0].linkSpeedMbps, 2000);
    EXPECT_EQ(list[1].name, "eno2");
    EXPECT_EQ(list[1].media, "no link");
    EXPECT_EQ(list[1].linkSpeedMbps, 0) << "−1 is unknown";
    EXPECT_EQ(list[1].mac, "");
    EXPECT_FALSE(list[1].up);
    EXPECT_EQ(list[2].name, "wlan0");
    EXPECT_EQ(list[2].media, "IEEE 802.11 (no link)");
    EXPECT_EQ(list[2].rxErrors, 3u);
    EXPECT_EQ(list[2].drops, 4u);
    EXPECT_EQ(list[2].txErrors, 7u);
    EXPECT_EQ(list[2].collisions, 6u);
    EXPECT_TRUE(readInterfaces(SystemRoot("/nonexistent")).empty());
}

TEST(Interfaces, AddressesAgreeWithTheSystemLibrary) {
    ifaddrs* first = nullptr;
    ASSERT_EQ(::getifaddrs(&first), 0);
    std::set<std::string> expected;
    for (const ifaddrs* each = first; each; each = each->ifa_next) {
        if (!each->ifa_addr || each->ifa_addr->sa_family != AF_INET || each->ifa_flags & IFF_LOOPBACK)
            continue;
        sockaddr_in socketAddress{};
        std::memcpy(&socketAddress, each->ifa_addr, sizeof socketAddress);
        expected.insert(ntop(AF_INET, &socketAddress.sin_addr));
    }
    ::freeifaddrs(first);
    std::set<std::string> listed;
    for (const auto& interface : readInterfaces(SystemRoot::host()))
        for (const auto& text : interface.addrs)
            if (text.find(':') == std::string::npos) listed.insert(text);
    EXPECT_EQ(listed, expected);
}

bool changeAddress(uint16_t type, unsigned index, std::array<char, 4> bytes) {
    ifaddrmsg header{};
    header.ifa_family = AF_INET;
    header.ifa_prefixlen = 20;
    header.ifa_index = index;
    const std::string_view value(bytes.data(), bytes.size());
    return changeNetwork(type, NLM_F_CREATE,
                         bytesOf(header) + attribute(IFA_LOCAL, value) + attribute(IFA_ADDRESS, value));
}

void followAddressesThatChange() {
    if (!addBridge("quarn0")) GTEST_SKIP() << "this kernel makes no bridges";
    const unsigned index = ::if_nametoindex("quarn0");
    const auto readers = platform::openReaders(SystemRoot::host());
    InterfaceList list;
    EXPECT_FALSE(find(list.sample(*readers), "quarn0")) << "no address, no traffic";

    ASSERT_TRUE(changeAddress(RTM_NEWADDR, index, {10, 1, 16, 3}));
    const auto* bridge = find(list.sample(*readers), "quarn0");
    ASSERT_TRUE(bridge);
    EXPECT_EQ(bridge->addrs, std::vector<std::string>{"10.1.16.3"});
    EXPECT_EQ(bridge->netmask, "255.255.240.0");
    EXPECT_EQ(bridge->mac.size(), 17u);
    EXPECT_EQ(bridge->media, "") << "a bridge is plugged into nothing";
    EXPECT_FALSE(bridge->up);

    ASSERT_TRUE(switchOn(index));
    ASSERT_TRUE(changeAddress(RTM_NEWADDR, index, {10, 2, 0, 4}));
    bridge = find(list.sample(*readers), "quarn0");
    ASSERT_TRUE(bridge);
    EXPECT_EQ(bridge->addrs, (std::vector<std::string>{"10.2.0.4", "10.1.16.3"})) << "the later first";

    ASSERT_TRUE(changeAddress(RTM_DELADDR, index, {10, 2, 0, 4}));
    ASSERT_TRUE(changeAddress(RTM_DELADDR, index, {10, 1, 16, 3}));
    bridge = find(list.sample(*readers), "quarn0");
    EXPECT_TRUE(!bridge || bridge->addrs.empty());
}

TEST(Interfaces, FollowAddressesThatChange) {
    if (!inOwnNetwork(followAddressesThatChange)) GTEST_SKIP() << "a network namespace needs root";
}

} // namespace
