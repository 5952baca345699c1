#include "core/linux/LinkSocket.h"

#include <algorithm>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

namespace sysinfo::platform {

using Answer = RouteSocket::Answer;

LinkSocket::LinkSocket() : socket_(RTMGRP_LINK) {}

Answer LinkSocket::readIdentities() {
    struct {
        ifinfomsg link{};
        nlattr attribute{sizeof(nlattr) + sizeof(uint32_t), IFLA_EXT_MASK};
        uint32_t mask = RTEXT_FILTER_SKIP_STATS;
    } body;
    std::swap(identities_, former_);
    identities_.clear();
    const auto answer = socket_.ask(RTM_GETLINK, asBytes(body),
                                    [this](Bytes datagram, uint32_t sequence, AnswerProgress& progress) {
                                        parseLinks(datagram, sequence, progress, identities_);
                                    });
    std::sort(identities_.begin(), identities_.end(),
              [](const LinkIdentity& a, const LinkIdentity& b) { return a.index < b.index; });
    identitiesKnown_ = answer == Answer::whole;
    if (revision_ == 0 || identities_ != former_) ++revision_;
    return answer;
}

Answer LinkSocket::readCounters() {
    if_stats_msg body{};
    body.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);
    counters_.clear();
    return socket_.ask(RTM_GETSTATS, asBytes(body),
                       [this](Bytes datagram, uint32_t sequence, AnswerProgress& progress) {
                           parseLinkCounters(datagram, sequence, progress, counters_);
                       });
}

size_t LinkSocket::position(uint32_t index) const {
    const auto found =
        std::lower_bound(identities_.begin(), identities_.end(), index,
                         [](const LinkIdentity& link, uint32_t wanted) { return link.index < wanted; });
    const bool isThere = found != identities_.end() && found->index == index;
    return isThere ? static_cast<size_t>(found - identities_.begin()) : identities_.size();
}

bool LinkSocket::everyCounterHasItsLink() const {
    return std::all_of(counters_.begin(), counters_.end(), [&](const LinkCounters& counters) {
        return position(counters.index) < identities_.size();
    });
}

bool LinkSocket::read() {
    constexpr int attempts = 4; // links may come and go while they are listed
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (!socket_.open()) return false;
        if (socket_.changeAnnounced()) identitiesKnown_ = false;
        Answer answer = identitiesKnown_ ? Answer::whole : readIdentities();
        if (answer == Answer::whole) answer = readCounters();
        if (answer == Answer::failed) socket_.close();
        if (answer != Answer::whole) continue;
        if (everyCounterHasItsLink()) return true;
        identitiesKnown_ = false;
    }
    return false;
}

} // namespace sysinfo::platform
