#include "core/linux/LinkMessages.h"

#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

namespace sysinfo::platform {

namespace {

std::string rawBytes(Bytes value) { return {value.data(), value.size()}; }

std::string_view kindOf(Bytes linkInfo) {
    std::string_view kind;
    forEachAttribute(linkInfo, [&](uint16_t type, Bytes value) {
        if (type == IFLA_INFO_KIND) kind = attributeText(value);
    });
    return kind;
}

void readLink(Bytes message, std::vector<LinkIdentity>& out) {
    const auto header = payloadHeader<ifinfomsg>(message);
    if (!header || header->ifi_index <= 0) return;
    LinkIdentity link;
    link.index = static_cast<uint32_t>(header->ifi_index);
    link.name = interfaceName(message.data(), message.size());
    link.interfaceFlags = header->ifi_flags;
    link.hardwareType = header->ifi_type;
    forEachAttributeAfter<ifinfomsg>(message, [&](uint16_t type, Bytes value) {
        switch (type) {
        case IFLA_LINKINFO: link.kind = kindOf(value); break;
        case IFLA_MTU: link.mtu = structureAt<uint32_t>(value).value_or(0); break;
        case IFLA_ADDRESS: link.address = rawBytes(value); break;
        case IFLA_PERM_ADDRESS: link.permanentAddress = rawBytes(value); break;
        case IFLA_CARRIER: link.carrier = structureAt<uint8_t>(value).value_or(0) != 0; break;
        case IFLA_CARRIER_CHANGES: link.carrierChanges = structureAt<uint32_t>(value).value_or(0); break;
        default: break;
        }
    });
    if (!link.name.empty()) out.push_back(std::move(link));
}

void readCounters(Bytes message, std::vector<LinkCounters>& out) {
    const auto header = payloadHeader<if_stats_msg>(message);
    if (!header) return;
    forEachAttributeAfter<if_stats_msg>(message, [&](uint16_t type, Bytes value) {
        // Newer kernels add fields at the end: only the leading ones, which all have, are asked for.
        struct LeadingFields {
            uint64_t rxPackets, txPackets, rxBytes, txBytes, rxErrors, txErrors, rxDropped, txDropped,
                multicast, collisions;
        };
        if (type != IFLA_STATS_LINK_64) return;
        if (const auto fields = structureAt<LeadingFields>(value))
            out.push_back({header->ifindex, fields->rxBytes, fields->txBytes, fields->rxPackets,
                           fields->txPackets, fields->rxErrors, fields->txErrors, fields->rxDropped,
                           fields->collisions});
    });
}

} // namespace

void parseLinks(Bytes datagram, uint32_t sequence, AnswerProgress& progress, std::vector<LinkIdentity>& out) {
    walkAnswer(datagram, sequence, RTM_NEWLINK, progress, [&](Bytes message) { readLink(message, out); });
}

void parseLinkCounters(Bytes datagram, uint32_t sequence, AnswerProgress& progress,
                       std::vector<LinkCounters>& out) {
    walkAnswer(datagram, sequence, RTM_NEWSTATS, progress,
               [&](Bytes message) { readCounters(message, out); });
}

std::string_view interfaceName(const char* message, size_t length) {
    const auto header = structureAt<nlmsghdr>({message, length});
    if (!header || header->nlmsg_type != RTM_NEWLINK || header->nlmsg_len > length) return {};
    std::string_view name;
    forEachAttributeAfter<ifinfomsg>({message, length}, [&](uint16_t type, Bytes value) {
        if (type == IFLA_IFNAME) name = attributeText(value);
    });
    return name.size() < IF_NAMESIZE ? name : std::string_view();
}

} // namespace sysinfo::platform
