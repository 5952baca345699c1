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
    constexpr uint32_t unknown = static_cast<uint32_t>(SPEED_UNKNOWN);
    constexpr uint8_t half = DUPLEX_HALF, full = DUPLEX_FULL, no = DUPLEX_UNKNOWN, on = AUTONEG_ENABLE;
    const struct {
        LinkSettings settings;
        bool active;
        const char* text;
        uint32_t speed;
    } cases[] = {
        {{10, half, PORT_TP, on}, true, "10baseT half-duplex", 10},
        {{100, full, PORT_TP, on}, true, "100baseTX full-duplex", 100},
        {{1000, full, PORT_TP, on}, true, "1000baseT full-duplex", 1000},
        {{5000, full, PORT_TP, AUTONEG_DISABLE}, true, "5000baseT full-duplex", 5000},
        {{10000, full, PORT_TP, on}, true, "10GbaseT full-duplex", 10000},
        {{10000, full, PORT_FIBRE, AUTONEG_DISABLE}, true, "full-duplex", 10000},
        {{40000, full, PORT_DA, AUTONEG_DISABLE}, true, "full-duplex", 40000},
        {{25000, no, PORT_TP, AUTONEG_DISABLE}, true, "", 25000},
        {{unknown, no, PORT_TP, on}, false, "auto (no link)", 0},
        {{unknown, no, PORT_OTHER, AUTONEG_DISABLE}, true, "", 0},
        {{unknown, no, PORT_OTHER, AUTONEG_DISABLE}, false, "no link", 0},
        {{unknown, full, PORT_TP, AUTONEG_DISABLE}, false, "full-duplex (no link)", 0},
    };
    for (const auto& c : cases) {
        const Media media = platform::wiredMedia(c.settings, c.active);
        EXPECT_EQ(mediaText(media), c.text);
        EXPECT_EQ(media.speedMbps, c.speed) << c.text;
    }
    EXPECT_EQ(mediaText({}), "");
    EXPECT_EQ(mediaText({.kind = Media::Kind::wireless}), "IEEE 802.11 (no link)");
    EXPECT_EQ(mediaText({.kind = Media::Kind::wireless, .active = true}), "IEEE 802.11");
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

    const std::pair<uint8_t, const char*> masks[] = {
        {0, "0.0.0.0"}, {1, "128.0.0.0"}, {32, "255.255.255.255"}, {200, "255.255.255.255"}};
    for (const auto& [length, mask] : masks) {
        source.addresses = {address(AF_INET, "1.2.3.4", length)};
        EXPECT_EQ(describeInterface(source).netmask, mask);
    }
    EXPECT_EQ(ntop(AF_UNIX, "1234"), "");
}

TEST(Interface, HardwareAddressAndFlags) {
    using Address = std::optional<platform::Interface::HardwareAddress>;
    const Address own{{0x52, 0x54, 0, 0, 0xab, 1}}, placeholder{{2, 0, 0, 0, 0, 0}}, real{{4, 5, 6, 7, 8, 9}};
    const struct {
        Address current, permanent;
        const char* mac;
    } cases[] = {
        {own, {}, "52:54:00:00:ab:01"},           {own, real, "52:54:00:00:ab:01"},
        {placeholder, real, "04:05:06:07:08:09"}, {placeholder, {}, "02:00:00:00:00:00"},
        {{}, real, "04:05:06:07:08:09"},          {{}, {}, ""},
    };
    platform::Interface source;
    for (const auto& c : cases) {
        source.hardwareAddress = c.current;
        source.permanentAddress = c.permanent;
        EXPECT_EQ(describeInterface(source).mac, c.mac);
    }
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
    const auto plain = attribute(IFA_ADDRESS, own);
    const struct {
        const char* lesson;
        std::string bytes;
        std::string found; ///< the address, if any
    } cases[] = {
        {"plain", addressMessage(AF_INET, 24, plain), own},
        {"the other end comes first",
         addressMessage(AF_INET, 32, attribute(IFA_ADDRESS, peer) + attribute(IFA_LOCAL, own)), own},
        {"of another family", addressMessage(AF_INET, 24, attribute(IFA_LOCAL, longAddress)), ""},
        {"too short", addressMessage(AF_INET6, 24, plain), ""},
        {"no internet address", addressMessage(AF_UNIX, 24, plain), ""},
        {"no address", addressMessage(AF_INET, 24, ""), ""},
        {"no room for a header", message(RTM_NEWADDR, 0, 1, "abc"), ""},
    };
    for (const auto& c : cases) {
        platform::AnswerProgress progress;
        std::vector<platform::LinkAddress> addresses;
        platform::parseAddresses(c.bytes, 1, progress, addresses);
        ASSERT_EQ(addresses.size(), c.found.empty() ? 0u : 1u) << c.lesson;
        if (c.found.empty()) continue;
        EXPECT_EQ(addresses[0].index, 3u);
        EXPECT_TRUE(std::equal(own.begin(), own.end(), addresses[0].address.bytes.begin())) << c.lesson;
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
    machine
        .files("sys/class/net/eno2", "type=1;flags=0x1003;speed=-1;duplex=unknown;carrier=0;operstate=down;"
                                     "address=not an address;device/vendor=0x8086")
        .files("sys/class/net/wlan0", "type=1;flags=0x1003;operstate=down;device/vendor=0x8086;"
                                      "uevent=DEVTYPE=wlan\nINTERFACE=wlan0")
        .files("sys/class/net/bond0", "speed=2000;duplex=full;operstate=up;bonding/mode=balance-rr 0")
        .write("proc/net/dev", "wlan0: 5 2 3 4 0 0 0 0 9 8 7 0 0 6 0 0\n"
                               "lo: 99 2 0 0 0 0 0 0 9 8 0 0 0 0 0 0\n"
                               "eno2: 1 2 0 0 0 0 0 0 9 8 0 0 0 0 0 0\n"
                               "bond0: 1 2 0 0 0 0 0 0 9 8 0 0 0 0 0 0\n"
                               "idle0: 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    const auto list = readInterfaces(machine.root());
    std::string seen;
    for (const auto& one : list)
        seen += one.name + '|' + one.media + '|' + std::to_string(one.linkSpeedMbps) + '|' + one.mac +
                (one.up ? "|up\n" : "|\n");
    EXPECT_EQ(seen, "bond0|full-duplex|2000||up\neno2|no link|0||\nwlan0|IEEE 802.11 (no link)|0||\n")
        << "neither the loopback nor what never carried a byte; a speed of −1 is unknown";
    EXPECT_EQ(list[2].rxErrors, 3u);
    EXPECT_EQ(list[2].drops, 4u);
    EXPECT_EQ(list[2].txErrors, 7u);
    EXPECT_EQ(list[2].collisions, 6u);
    EXPECT_TRUE(readInterfaces(SystemRoot("/nonexistent")).empty());
}

TEST(Interfaces, AddressesAgreeWithTheSystemLibrary) {
    ifaddrs* first = nullptr;
    ASSERT_EQ(::getifaddrs(&first), 0);
    std::set<std::string> expected, listed;
    for (const ifaddrs* each = first; each; each = each->ifa_next) {
        if (!each->ifa_addr || each->ifa_addr->sa_family != AF_INET || each->ifa_flags & IFF_LOOPBACK)
            continue;
        expected.insert(ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(each->ifa_addr)->sin_addr));
    }
    ::freeifaddrs(first);
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
