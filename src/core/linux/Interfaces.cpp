#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/InterfaceReader.h"
#include "core/linux/LinkFlags.h"
#include "core/linux/LinkMedia.h"
#include "core/linux/NetDev.h"
#include "core/linux/Readers.h"

#include <algorithm>
#include <cstring>
#include <net/if.h>
#include <net/if_arp.h>

namespace sysinfo::platform {

namespace {

std::optional<Interface::HardwareAddress> hardwareAddress(std::string_view bytes) {
    Interface::HardwareAddress address{};
    if (bytes.size() != address.size()) return {};
    std::memcpy(address.data(), bytes.data(), address.size());
    return address == Interface::HardwareAddress{} ? std::nullopt : std::optional(address);
}

/// "52:54:00:12:34:56" as bytes; nullopt for anything else.
std::optional<Interface::HardwareAddress> parseHardwareAddress(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const auto byte = scutil::toNumber<uint8_t>(scutil::takeUntil(text, ':'), 16);
        if (!byte) return {};
        bytes += static_cast<char>(*byte);
    }
    return hardwareAddress(bytes);
}

/// Links that work like Ethernet have addresses of its sort.
Interface describeLink(const LinkIdentity& link) {
    Interface interface;
    interface.name = link.name;
    interface.flags = linkFlags(link.interfaceFlags);
    interface.mtu = static_cast<int32_t>(std::min<uint32_t>(link.mtu, INT32_MAX));
    if (link.hardwareType == ARPHRD_ETHER) {
        interface.hardwareAddress = hardwareAddress(link.address);
        interface.permanentAddress = hardwareAddress(link.permanentAddress);
    }
    return interface;
}

Interface describeFolder(const SystemRoot& root, const NetDevLine& line) {
    const std::string folder = root.path("sys/class/net/" + line.name);
    const bool isLoopback = line.name == "lo";
    const auto assumed = isLoopback ? IFF_UP | IFF_LOOPBACK : IFF_UP;
    const auto state = readAttribute(folder + "/operstate");
    const bool active = readNumber(folder + "/carrier").value_or(state == "up" ? 1 : 0) == 1;

    Interface interface;
    interface.name = line.name;
    interface.flags = linkFlags(static_cast<uint32_t>(readNumber(folder + "/flags").value_or(assumed)));
    // The file leaves out what the kernel adds from the state.
    if (!state || state == "up" || state == "unknown") interface.flags |= linkRunning;
    interface.mtu =
        static_cast<int32_t>(std::clamp<long long>(readNumber(folder + "/mtu").value_or(0), 0, INT32_MAX));
    if (readNumber(folder + "/type").value_or(ARPHRD_ETHER) == ARPHRD_ETHER)
        interface.hardwareAddress = parseHardwareAddress(readAttribute(folder + "/address").value_or(""));
    interface.media = readMedia(root, line.name, "", active);
    interface.rxBytes = line.rxBytes;
    interface.txBytes = line.txBytes;
    interface.rxPackets = line.rxPackets;
    interface.txPackets = line.txPackets;
    interface.rxErrors = line.rxErrors;
    interface.txErrors = line.txErrors;
    interface.drops = line.rxDropped;
    interface.collisions = line.collisions;
    return interface;
}

} // namespace

const Media& InterfaceReader::mediaOf(const LinkIdentity& link) {
    auto& known = media_[link.index];
    if (known.link != link) known = {link, readMedia(root_, link.name, link.kind, link.carrier)};
    return known.media;
}

void InterfaceReader::describe() {
    if (linksDescribed_ == links_.revision() && addressesDescribed_ == addresses_.revision()) return;
    std::erase_if(media_, [&](const auto& known) {
        return links_.position(known.first) == links_.identities().size();
    });
    interfaces_.clear();
    for (const auto& link : links_.identities()) {
        interfaces_.push_back(describeLink(link));
        interfaces_.back().media = mediaOf(link);
    }
    for (const auto& [index, address] : addresses_.addresses()) {
        const size_t position = links_.position(index);
        if (position < interfaces_.size()) interfaces_[position].addresses.push_back(address);
    }
    linksDescribed_ = links_.revision();
    addressesDescribed_ = addresses_.revision();
    ++revision_;
}

bool InterfaceReader::readFromKernel() {
    if (!root_.isHost() || !links_.read() || !addresses_.read()) return false;
    describe();
    for (const auto& counters : links_.counters()) {
        auto& interface = interfaces_[links_.position(counters.index)];
        interface.rxBytes = counters.rxBytes;
        interface.txBytes = counters.txBytes;
        interface.rxPackets = counters.rxPackets;
        interface.txPackets = counters.txPackets;
        interface.rxErrors = counters.rxErrors;
        interface.txErrors = counters.txErrors;
        interface.drops = counters.rxDropped;
        interface.collisions = counters.collisions;
    }
    return true;
}

bool InterfaceReader::readFromTable() {
    const auto table = readTable(root_.path("proc/net/dev"));
    if (!table) return false;
    interfaces_.clear();
    for (const auto& line : parseNetDev(*table)) interfaces_.push_back(describeFolder(root_, line));
    linksDescribed_ = 0;
    ++revision_;
    return true;
}

std::optional<InterfaceTable> InterfaceReader::list() {
    if (!readFromKernel() && !readFromTable()) return {};
    return InterfaceTable{interfaces_, revision_};
}

std::optional<InterfaceTable> listInterfaces(Readers& readers) {
    if (!readers.interfaces) readers.interfaces = std::make_shared<InterfaceReader>(readers.root);
    return readers.interfaces->list();
}

} // namespace sysinfo::platform
