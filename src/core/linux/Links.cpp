#include "core/linux/Files.h"
#include "core/linux/LinkFlags.h"
#include "core/linux/LinkReader.h"
#include "core/linux/LinkTraits.h"
#include "core/linux/NetDev.h"
#include "core/linux/Readers.h"

#include <array>
#include <net/if.h>
#include <utility>

namespace sysinfo::platform {

uint32_t linkFlags(uint32_t interfaceFlags) {
    static constexpr std::array<std::pair<unsigned, LinkFlags>, 6> names{{{IFF_UP, linkUp},
                                                                          {IFF_LOOPBACK, linkLoopback},
                                                                          {IFF_POINTOPOINT, linkPointToPoint},
                                                                          {IFF_RUNNING, linkRunning},
                                                                          {IFF_BROADCAST, linkBroadcast},
                                                                          {IFF_MULTICAST, linkMulticast}}};
    uint32_t flags = 0;
    for (const auto& [kernelFlag, flag] : names)
        if (interfaceFlags & kernelFlag) flags |= flag;
    return flags;
}

void LinkReader::classify() {
    if (classified_ == socket_.revision()) return;
    known_.clear();
    for (const auto& identity : socket_.identities()) {
        LinkTraits traits = readLinkTraits(root_, identity.name);
        traits.kind = identity.kind;
        Link& link = known_.emplace_back();
        link.index = identity.index;
        link.name = identity.name;
        link.flags = linkFlags(identity.interfaceFlags);
        link.type = linkType(traits);
    }
    classified_ = socket_.revision();
}

bool LinkReader::listFromKernel(std::vector<Link>& out) {
    if (!root_.isHost() || !socket_.read()) return false;
    classify();
    out.resize(socket_.counters().size());
    for (size_t i = 0; i < out.size(); ++i) {
        const auto& counters = socket_.counters()[i];
        out[i] = known_[socket_.position(counters.index)];
        out[i].rxBytes = counters.rxBytes;
        out[i].txBytes = counters.txBytes;
        out[i].rxPackets = counters.rxPackets;
        out[i].txPackets = counters.txPackets;
    }
    return true;
}

bool LinkReader::listFromTable(std::vector<Link>& out) const {
    const auto table = readTable(root_.path("proc/net/dev"));
    if (!table) return false;
    out.clear();
    for (const auto& line : parseNetDev(*table)) {
        const std::string folder = root_.path("sys/class/net/" + line.name);
        const bool isLoopback = line.name == "lo";
        const auto flags =
            readNumber(folder + "/flags").value_or(isLoopback ? IFF_UP | IFF_LOOPBACK : IFF_UP);
        Link& link = out.emplace_back();
        link.index = static_cast<uint32_t>(readNumber(folder + "/ifindex").value_or(0));
        link.name = line.name;
        link.flags = linkFlags(static_cast<uint32_t>(flags));
        link.type = linkType(readLinkTraits(root_, line.name));
        link.rxBytes = line.rxBytes;
        link.txBytes = line.txBytes;
        link.rxPackets = line.rxPackets;
        link.txPackets = line.txPackets;
    }
    return true;
}

bool LinkReader::list(std::vector<Link>& out) { return listFromKernel(out) || listFromTable(out); }

bool listLinks(Readers& readers, std::vector<Link>& out) {
    if (!readers.links) readers.links = std::make_shared<LinkReader>(readers.root);
    return readers.links->list(out);
}

} // namespace sysinfo::platform
