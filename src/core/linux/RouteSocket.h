#pragma once

#include "core/UniqueFd.h"
#include "core/linux/Netlink.h"

#include <functional>
#include <vector>

namespace sysinfo::platform {

/// Questions to the kernel about links and addresses, and its announcements of changes. Never blocks. Belongs
/// to one thread at a time, whose network namespace it keeps.
class RouteSocket {
public:
    /// `groups` are those of the announcements that matter (RTMGRP_LINK, …).
    explicit RouteSocket(uint32_t groups) : groups_(groups) {}

    /// Opens what is not open; false when the kernel refuses.
    bool open();
    /// Drops what is left of an answer that failed.
    void close();

    /// Whether something changed since the last call, or may have: always so just after opening, and where no
    /// announcements are to be had.
    bool changeAnnounced();

    enum class Answer { whole, interrupted, failed };
    using Parse = std::function<void(Bytes datagram, uint32_t sequence, AnswerProgress& progress)>;
    /// Sends a request for a list and hands each datagram of the answer to `parse`. `body` follows the
    /// message header of `type`.
    Answer ask(uint16_t type, Bytes body, const Parse& parse);

private:
    const uint32_t groups_;
    scutil::UniqueFd socket_;
    scutil::UniqueFd announcements_;
    bool justOpened_ = false;
    uint32_t sequence_ = 0;
    std::vector<char> buffer_;
};

} // namespace sysinfo::platform
