#include "core/NetSampler.h"

namespace sysinfo {

namespace {

double rate(uint64_t current, uint64_t previous, double seconds) {
    return seconds > 0 && current >= previous ? static_cast<double>(current - previous) / seconds : 0;
}

} // namespace

SCNet nextNetSample(const SCNet& previous, const std::optional<InterfaceTotals::Totals>& totals,
                    double seconds) {
    if (!totals) return previous;
    SCNet next{};
    next.rxBytes = totals->rxBytes;
    next.txBytes = totals->txBytes;
    next.rxPackets = totals->rxPackets;
    next.txPackets = totals->txPackets;
    next.rxRate = rate(next.rxBytes, previous.rxBytes, seconds);
    next.txRate = rate(next.txBytes, previous.txBytes, seconds);
    next.rxPacketRate = rate(next.rxPackets, previous.rxPackets, seconds);
    next.txPacketRate = rate(next.txPackets, previous.txPackets, seconds);
    return next;
}

SCNet NetSampler::sample(platform::Readers& readers) {
    if (!platform::listLinks(readers, links_)) return last_;
    return advance(links_, platform::monotonicRawNs());
}

SCNet NetSampler::advance(const std::vector<platform::Link>& links, uint64_t nowNs) {
    counted_.clear();
    for (const auto& link : links) {
        if (!countsInterface(link.name, link.flags, link.type)) continue;
        counted_.push_back(
            {link.index, link.name, link.rxBytes, link.txBytes, link.rxPackets, link.txPackets});
    }
    const bool later = lastNs_ && nowNs > *lastNs_;
    const double seconds = later ? static_cast<double>(nowNs - *lastNs_) / 1e9 : 0;
    lastNs_ = nowNs;
    last_ = nextNetSample(last_, totals_.add(counted_), seconds);
    return last_;
}

} // namespace sysinfo
