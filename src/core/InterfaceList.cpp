#include "core/InterfaceList.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstdio>

namespace sysinfo {

namespace {

using platform::Interface;
using platform::InterfaceAddress;
using platform::Media;

constexpr std::array<uint8_t, 6> placeholderAddress{2, 0, 0, 0, 0, 0}; ///< some drivers show it to everyone

std::string_view wiring(const Media& media) {
    if (media.kind == Media::Kind::wireless) return "IEEE 802.11";
    if (media.speedMbps == 0) return media.negotiates ? "auto" : "";
    if (media.connector != Media::Connector::copper) return {};
    switch (media.speedMbps) {
    case 10: return "10baseT";
    case 100: return "100baseTX";
    case 1000: return "1000baseT";
    case 2500: return "2500baseT";
    case 5000: return "5000baseT";
    case 10000: return "10GbaseT";
    default: return {};
    }
}

std::string netmaskText(unsigned prefixLength) {
    const uint32_t bits = prefixLength == 0 ? 0 : ~uint32_t{0} << (32 - std::min(prefixLength, 32u));
    const uint32_t networkOrder = htonl(bits);
    return ntop(AF_INET, &networkOrder);
}

bool isLinkLocal(const InterfaceAddress& address) {
    return address.bytes[0] == 0xfe && (address.bytes[1] & 0xc0) == 0x80;
}

void addAddress(NetInterface& interface, const InterfaceAddress& address, bool broadcasts) {
    if (address.family == AF_INET) {
        interface.addrs.insert(interface.addrs.begin(), ntop(AF_INET, address.bytes.data()));
        interface.netmask = netmaskText(address.prefixLength);
        if (broadcasts && address.broadcast) interface.broadcast = ntop(AF_INET, address.broadcast->data());
    } else if (address.family == AF_INET6 && !isLinkLocal(address)) {
        interface.addrs.push_back(ntop(AF_INET6, address.bytes.data()));
    }
}

void setCounters(NetInterface& interface, const Interface& source) {
    interface.rxBytes = source.rxBytes;
    interface.txBytes = source.txBytes;
    interface.rxPackets = source.rxPackets;
    interface.txPackets = source.txPackets;
    interface.rxErrors = source.rxErrors;
    interface.txErrors = source.txErrors;
    interface.drops = source.drops;
    interface.collisions = source.collisions;
}

bool isListed(const NetInterface& interface) {
    const bool idle = interface.addrs.empty() && interface.rxBytes == 0 && interface.txBytes == 0;
    return interface.name != "lo" && !idle;
}

} // namespace

std::string ntop(int family, const void* address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    return ::inet_ntop(family, address, text.data(), text.size()) ? text.data() : "";
}

std::string formatMac(std::span<const uint8_t, 6> address) {
    std::array<char, 18> text{};
    std::snprintf(text.data(), text.size(), "%02x:%02x:%02x:%02x:%02x:%02x", address[0], address[1],
                  address[2], address[3], address[4], address[5]);
    return text.data();
}

std::string mediaText(const Media& media) {
    if (media.kind == Media::Kind::none) return {};
    std::string text(wiring(media));
    const auto append = [&](std::string_view word) {
        if (!text.empty()) text += ' ';
        text += word;
    };
    if (media.duplex == Media::Duplex::full) append("full-duplex");
    if (media.duplex == Media::Duplex::half) append("half-duplex");
    if (!media.active) append(text.empty() ? "no link" : "(no link)");
    return text;
}

NetInterface describeInterface(const Interface& source) {
    NetInterface interface;
    interface.name = source.name;
    interface.up = (source.flags & platform::linkUp) && (source.flags & platform::linkRunning);
    interface.loopback = source.flags & platform::linkLoopback;
    interface.pointToPoint = source.flags & platform::linkPointToPoint;
    interface.multicastCapable = source.flags & platform::linkMulticast;
    interface.mtu = source.mtu;
    interface.media = mediaText(source.media);
    interface.linkSpeedMbps = static_cast<int32_t>(std::min<uint32_t>(source.media.speedMbps, INT32_MAX));
    const bool standIn = !source.hardwareAddress || source.hardwareAddress == placeholderAddress;
    const auto& address =
        standIn && source.permanentAddress ? source.permanentAddress : source.hardwareAddress;
    if (address) interface.mac = formatMac(*address);
    for (const auto& each : source.addresses)
        addAddress(interface, each, source.flags & platform::linkBroadcast);
    return interface;
}

const std::vector<NetInterface>& InterfaceList::sample(platform::Readers& readers) {
    listed_.clear();
    const auto table = platform::listInterfaces(readers);
    if (!table) return listed_;
    if (table->revision != revision_ || all_.size() != table->interfaces.size()) {
        all_.clear();
        for (const auto& interface : table->interfaces) all_.push_back(describeInterface(interface));
        revision_ = table->revision;
    }
    for (size_t i = 0; i < all_.size(); ++i) {
        setCounters(all_[i], table->interfaces[i]);
        if (isListed(all_[i])) listed_.push_back(all_[i]);
    }
    std::sort(listed_.begin(), listed_.end(),
              [](const NetInterface& a, const NetInterface& b) { return a.name < b.name; });
    return listed_;
}

std::vector<NetInterface> readInterfaces(const SystemRoot& root) {
    InterfaceList list;
    return list.sample(*platform::openReaders(root));
}

} // namespace sysinfo
