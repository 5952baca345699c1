#include "core/FlatRecords.h"
#include "core/InterfaceList.h"
#include "core/sc.h"

#include <cstdlib>

namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

void flatten(const sysinfo::NetInterface& interface, SCInterface& out) {
    using scutil::copyText;
    copyText(out.name, interface.name);
    copyText(out.mac, interface.mac);
    copyText(out.addrs, joined(interface.addrs));
    out.up = interface.up;
    out.rxBytes = interface.rxBytes;
    out.txBytes = interface.txBytes;
    out.rxPackets = interface.rxPackets;
    out.txPackets = interface.txPackets;
    out.rxErrors = interface.rxErrors;
    out.txErrors = interface.txErrors;
    out.drops = interface.drops;
    out.collisions = interface.collisions;
    out.mtu = interface.mtu;
    out.linkSpeedMbps = interface.linkSpeedMbps;
    copyText(out.media, interface.media);
    copyText(out.netmask, interface.netmask);
    copyText(out.broadcast, interface.broadcast);
    out.loopback = interface.loopback;
    out.pointToPoint = interface.pointToPoint;
    out.multicastCapable = interface.multicastCapable;
}

} // namespace

SCInterface* sc_read_interfaces(uint32_t* count) {
    return scutil::flatRecords<SCInterface>(sysinfo::readInterfaces(sysinfo::SystemRoot::host()), count,
                                            flatten);
}

void sc_free_interfaces(SCInterface* interfaces) { std::free(interfaces); }
