#include "core/linux/AddressSocket.h"

#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace sysinfo::platform {

namespace {

void readAddress(Bytes message, std::vector<LinkAddress>& out) {
    const auto header = payloadHeader<ifaddrmsg>(message);
    if (!header) return;
    const size_t length = header->ifa_family == AF_INET ? 4 : header->ifa_family == AF_INET6 ? 16 : 0;
    LinkAddress entry;
    entry.index = header->ifa_index;
    entry.address.family = header->ifa_family;
    entry.address.prefixLength = header->ifa_prefixlen;
    Bytes local, peer;
    forEachAttributeAfter<ifaddrmsg>(message, [&](uint16_t type, Bytes value) {
        if (type == IFA_LOCAL) local = value;
        if (type == IFA_ADDRESS) peer = value;
        if (type == IFA_BROADCAST) entry.address.broadcast = structureAt<std::array<uint8_t, 4>>(value);
    });
    // On a point-to-point link the address proper is the other end's.
    const Bytes own = local.empty() ? peer : local;
    if (length == 0 || own.size() != length) return;
    std::memcpy(entry.address.bytes.data(), own.data(), length);
    out.push_back(entry);
}

} // namespace

void parseAddresses(Bytes datagram, uint32_t sequence, AnswerProgress& progress,
                    std::vector<LinkAddress>& out) {
    walkAnswer(datagram, sequence, RTM_NEWADDR, progress, [&](Bytes message) { readAddress(message, out); });
}

AddressSocket::AddressSocket() : socket_(RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR) {}

bool AddressSocket::read() {
    constexpr int attempts = 4; // addresses may come and go while they are listed
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (!socket_.open()) return false;
        if (socket_.changeAnnounced()) known_ = false;
        if (known_) return true;
        std::swap(addresses_, former_);
        addresses_.clear();
        const auto answer = socket_.ask(RTM_GETADDR, asBytes(ifaddrmsg{}),
                                        [this](Bytes datagram, uint32_t sequence, AnswerProgress& progress) {
                                            parseAddresses(datagram, sequence, progress, addresses_);
                                        });
        known_ = answer == RouteSocket::Answer::whole;
        if (revision_ == 0 || addresses_ != former_) ++revision_;
        if (answer == RouteSocket::Answer::failed) socket_.close();
    }
    return known_;
}

} // namespace sysinfo::platform
