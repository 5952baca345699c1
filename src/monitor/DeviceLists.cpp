#include "monitor/DeviceLists.h"

#include "monitor/Rates.h"

#include <algorithm>

namespace quarn {

namespace {

NetInterface fromInterface(const sysinfo::NetInterface& info) {
    NetInterface to;
    to.name = info.name;
    to.mac = info.mac;
    for (const auto& address : info.addrs) to.addrs += (to.addrs.empty() ? "" : ", ") + address;
    to.up = info.up;
    to.rxBytes = info.rxBytes;
    to.txBytes = info.txBytes;
    to.rxPackets = info.rxPackets;
    to.txPackets = info.txPackets;
    to.rxErrors = info.rxErrors;
    to.txErrors = info.txErrors;
    to.drops = info.drops;
    to.collisions = info.collisions;
    to.mtu = info.mtu;
    to.linkSpeedMbps = info.linkSpeedMbps;
    to.media = info.media;
    to.netmask = info.netmask;
    to.broadcast = info.broadcast;
    to.loopback = info.loopback;
    to.pointToPoint = info.pointToPoint;
    to.multicast = info.multicastCapable;
    return to;
}

DiskDevice fromRecord(const SCDiskDevice& record) {
    DiskDevice disk;
    disk.bsd = record.bsd;
    disk.name = record.name;
    disk.interconnect = record.interconnect;
    disk.medium = record.medium;
    disk.architecture = record.architecture;
    disk.link = record.link;
    disk.size = record.size;
    disk.isInternal = record.internalDisk != 0;
    disk.removable = record.removable != 0;
    disk.readBytes = record.readBytes;
    disk.writeBytes = record.writeBytes;
    return disk;
}

} // namespace

void DeviceLists::sample(sysinfo::platform::Readers& readers, double now) {
    sampleDisks(readers, now);
    sampleInterfaces(readers, now);
}

void DeviceLists::sampleDisks(sysinfo::platform::Readers& readers, double now) {
    std::vector<DiskDevice> disks;
    for (const auto& record : diskReader_.sample(readers)) disks.push_back(fromRecord(record));
    applyDiskRates(disks, disks_.cached, disks_.isTaken() ? disks_.age(now) : 0);
    disks_.store(std::move(disks), now);
}

void DeviceLists::sampleInterfaces(sysinfo::platform::Readers& readers, double now) {
    std::vector<NetInterface> interfaces;
    const double elapsed = interfaces_.isTaken() ? interfaces_.age(now) : 0;
    for (const auto& info : interfaceReader_.sample(readers)) {
        auto& interface = interfaces.emplace_back(fromInterface(info));
        const auto before = std::find_if(interfaces_.cached.begin(), interfaces_.cached.end(),
                                         [&](const NetInterface& i) { return i.name == interface.name; });
        if (before == interfaces_.cached.end()) continue;
        interface.rxRate = rateBetween(before->rxBytes, interface.rxBytes, elapsed);
        interface.txRate = rateBetween(before->txBytes, interface.txBytes, elapsed);
    }
    interfaces_.store(std::move(interfaces), now);
}

} // namespace quarn
