#include "core/linux/LinkMessages.h"

#include "core/linux/Netlink.h"

#include <algorithm>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

namespace sysinfo::platform {

namespace {

/// Walks one datagram of an answer, handing each whole message of `type` to `visit`.
template <class Visit>
void walkAnswer(Bytes datagram, uint32_t sequence, uint16_t type, DumpProgress& progress, Visit visit) {
    const bool whole = forEachMessage(datagram, [&](const nlmsghdr& header, Bytes message) {
        if (header.nlmsg_seq != sequence || progress.ended || progress.failed) return;
        if (header.nlmsg_flags & NLM_F_DUMP_INTR) progress.interrupted = true;
        // Both carry a negative error number, or 0 where there was none.
        const bool isStatus = header.nlmsg_type == NLMSG_DONE || header.nlmsg_type == NLMSG_ERROR;
        const auto error = structureAt<int32_t>(message.subspan(sizeof header));
        if (isStatus && error.value_or(0) < 0) progress.failed = true;
        if (header.nlmsg_type == NLMSG_DONE) progress.ended = true;
        if (header.nlmsg_type == type) visit(message);
    });
    if (!whole) progress.failed = true;
}

/// The attributes of a message whose payload starts with `Header`.
template <class Header, class Visit>
void forEachAttributeAfter(Bytes message, Visit visit) {
    forEachAttribute(afterPadded(afterPadded(message, sizeof(nlmsghdr)), sizeof(Header)), visit);
}

void readLink(Bytes message, std::vector<LinkIdentity>& out) {
    const auto header = structureAt<ifinfomsg>(message.subspan(sizeof(nlmsghdr)));
    if (!header || header->ifi_index <= 0) return;
    LinkIdentity link;
    link.index = static_cast<uint32_t>(header->ifi_index);
    link.name = interfaceName(message.data(), message.size());
    link.interfaceFlags = header->ifi_flags;
    forEachAttributeAfter<ifinfomsg>(message, [&](uint16_t type, Bytes value) {
        if (type != IFLA_LINKINFO) return;
        forEachAttribute(value, [&](uint16_t infoType, Bytes info) {
            if (infoType == IFLA_INFO_KIND) link.kind = attributeText(info);
        });
    });
    if (!link.name.empty()) out.push_back(std::move(link));
}

void readCounters(Bytes message, std::vector<LinkCounters>& out) {
    const auto header = structureAt<if_stats_msg>(message.subspan(sizeof(nlmsghdr)));
    if (!header) return;
    forEachAttributeAfter<if_stats_msg>(message, [&](uint16_t type, Bytes value) {
        // Newer kernels add fields at the end: only the leading ones, which all have, are asked for.
        struct LeadingFields {
            uint64_t rxPackets, txPackets, rxBytes, txBytes;
        };
        if (type != IFLA_STATS_LINK_64) return;
        if (const auto fields = structureAt<LeadingFields>(value))
            out.push_back(
                {header->ifindex, fields->rxBytes, fields->txBytes, fields->rxPackets, fields->txPackets});
    });
}

} // namespace

void parseLinks(Bytes datagram, uint32_t sequence, DumpProgress& progress, std::vector<LinkIdentity>& out) {
    walkAnswer(datagram, sequence, RTM_NEWLINK, progress, [&](Bytes message) { readLink(message, out); });
}

void parseLinkCounters(Bytes datagram, uint32_t sequence, DumpProgress& progress,
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
