// The interface listing: texts, what is left out, captured machines, and the kernel itself.
#include "core/InterfaceList.h"
#include "NetlinkSupport.h"
#include "core/linux/AddressSocket.h"
#include "core/linux/LinkMedia.h"
#include "support/Joined.h"
#include "support/TempRoot.h"

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
    constexpr uint8_t half = DUPLEX_HALF, full = DUPLEX_FULL, none = DUPLEX_UNKNOWN;
    constexpr uint8_t on = AUTONEG_ENABLE, off = AUTONEG_DISABLE;
    constexpr uint32_t unknown = static_cast<uint32_t>(SPEED_UNKNOWN);
    const auto text = [](const LinkSettings& settings, bool active = true) {
        const Media media = platform::wiredMedia(settings, active);
        return mediaText(media) + " " + std::to_string(media.speedMbps);
    };
    EXPECT_EQ(text({10, half, PORT_TP, on}), "10baseT half-duplex 10");
    EXPECT_EQ(text({100, full, PORT_TP, on}), "100baseTX full-duplex 100");
    EXPECT_EQ(text({1000, full, PORT_TP, on}), "1000baseT full-duplex 1000");
    EXPECT_EQ(text({5000, full, PORT_TP, off}), "5000baseT full-duplex 5000");
    EXPECT_EQ(text({10000, full, PORT_TP, on}), "10GbaseT full-duplex 10000");
    EXPECT_EQ(text({10000, full, PORT_FIBRE, off}), "full-duplex 10000");
    EXPECT_EQ(text({40000, full, PORT_DA, off}), "full-duplex 40000");
    EXPECT_EQ(text({25000, none, PORT_TP, off}), " 25000");
    EXPECT_EQ(text({unknown, none, PORT_TP, on}, false), "auto (no link) 0");
    EXPECT_EQ(text({unknown, none, PORT_OTHER, off}), " 0");
    EXPECT_EQ(text({unknown, none, PORT_OTHER, off}, false), "no link 0");
    EXPECT_EQ(text({unknown, full, PORT_TP, off}, false), "full-duplex (no link) 0");
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
    EXPECT_EQ(joinedEach(described.addrs, std::identity{}), "192.168.7.9 10.0.0.1 2001:db8::5 ");
    EXPECT_EQ(joined(described.netmask, described.broadcast), "255.255.254.0|192.168.7.255");
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
    platform::Interface source;
    const auto mac = [&](const Address& current, const Address& permanent) {
        source.hardwareAddress = current;
        source.permanentAddress = permanent;
        return describeInterface(source).mac;
    };
    EXPECT_EQ(mac(own, {}), "52:54:00:00:ab:01");
    EXPECT_EQ(mac(own, real), "52:54:00:00:ab:01");
    EXPECT_EQ(mac(placeholder, real), "04:05:06:07:08:09");
    EXPECT_EQ(mac(placeholder, {}), "02:00:00:00:00:00");
    EXPECT_EQ(mac({}, real), "04:05:06:07:08:09");
    EXPECT_EQ(mac({}, {}), "");
    source.flags = platform::linkUp | platform::linkMulticast;
    EXPECT_FALSE(describeInterface(source).up) << "switched on, but nothing plugged in";
    EXPECT_TRUE(describeInterface(source).multicastCapable);
    source.flags |= platform::linkRunning;
    EXPECT_TRUE(describeInterface(source).up);
}

TEST(AddressMessages, OwnAndPeerAndRubbish) {
    const auto found = [](uint8_t family, const std::string& attributes) {
        ifaddrmsg header{};
        header.ifa_family = family;
        header.ifa_index = 3;
        platform::AnswerProgress progress;
        std::vector<platform::LinkAddress> addresses;
        platform::parseAddresses(message(RTM_NEWADDR, 0, 1, bytesOf(header) + attributes), 1, progress,
                                 addresses);
        std::string text;
        for (const auto& [index, address] : addresses)
            text += std::to_string(index) + ' ' + ntop(address.family, address.bytes.data());
        return text;
    };
    const auto own = attribute(IFA_ADDRESS, {"\x0a\0\0\1", 4}),
               local = attribute(IFA_LOCAL, {"\x0a\0\0\1", 4});
    EXPECT_EQ(found(AF_INET, own), "3 10.0.0.1");
    EXPECT_EQ(found(AF_INET, attribute(IFA_ADDRESS, {"\x0a\0\0\2", 4}) + local), "3 10.0.0.1")
        << "the other end comes first";
    EXPECT_EQ(found(AF_INET, attribute(IFA_LOCAL, std::string(16, 'x'))), "") << "of another family";
    EXPECT_EQ(found(AF_INET6, own), "") << "too short";
    EXPECT_EQ(found(AF_UNIX, own), "") << "no internet address";
    EXPECT_EQ(found(AF_INET, ""), "");
}

/// "eth0|1000baseT full-duplex|1000|01:01:01:01:01:01|10.0.0.1 |up" of each.
std::string shown(const std::vector<NetInterface>& list) {
    std::string text;
    for (const auto& one : list)
        text += joined(one.name, one.media, one.linkSpeedMbps, one.mac,
                       joinedEach(one.addrs, std::identity{}), one.up ? "up\n" : "\n");
    return text;
}

TEST(CapturedInterfaces, AGigabitPort) {
    const auto list = readInterfaces(SystemRoot(QUARN_FIXTURES "/hosts/one-editor"));
    EXPECT_EQ(shown(list), "docker0||0|||up\neth0|1000baseT full-duplex|1000|01:01:01:01:01:01||up\n"
                           "vethf345468||0|||up\n")
        << "without the loopback";
    const auto& port = list.at(1);
    EXPECT_EQ(joined(port.mtu, port.multicastCapable, port.loopback, port.rxBytes, port.txPackets),
              "1500|1|0|874354587|732147");
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
    EXPECT_EQ(shown(list),
              "bond0|full-duplex|2000|||up\neno2|no link|0|||\nwlan0|IEEE 802.11 (no link)|0|||\n")
        << "neither the loopback nor what never carried a byte; a speed of −1 is unknown";
    EXPECT_EQ(joined(list[2].rxErrors, list[2].drops, list[2].txErrors, list[2].collisions), "3|4|7|6");
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

TEST(Interfaces, FollowAddressesThatChange) {
    inOwnNetwork([] {
        if (!addBridge("quarn0")) GTEST_SKIP() << "this kernel makes no bridges";
        const unsigned index = ::if_nametoindex("quarn0");
        const auto readers = platform::openReaders(SystemRoot::host());
        InterfaceList list;
        EXPECT_EQ(shown(list.sample(*readers)), "") << "no address, no traffic";

        ASSERT_TRUE(changeAddress(RTM_NEWADDR, index, {10, 1, 16, 3}));
        const auto& bridge = list.sample(*readers).at(0);
        const std::string mac = bridge.mac;
        EXPECT_EQ(mac.size(), 17u);
        EXPECT_EQ(bridge.netmask, "255.255.240.0");
        EXPECT_EQ(shown(list.sample(*readers)), "quarn0||0|" + mac + "|10.1.16.3 |\n");

        ASSERT_TRUE(switchOn(index));
        ASSERT_TRUE(changeAddress(RTM_NEWADDR, index, {10, 2, 0, 4}));
        EXPECT_EQ(list.sample(*readers).at(0).addrs, (std::vector<std::string>{"10.2.0.4", "10.1.16.3"}))
            << "the later first";

        ASSERT_TRUE(changeAddress(RTM_DELADDR, index, {10, 2, 0, 4}));
        ASSERT_TRUE(changeAddress(RTM_DELADDR, index, {10, 1, 16, 3}));
        for (const auto& left : list.sample(*readers)) EXPECT_TRUE(left.addrs.empty());
    });
}

} // namespace
