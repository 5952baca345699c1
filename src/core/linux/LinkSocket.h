#pragma once

#include "core/UniqueFd.h"
#include "core/linux/LinkMessages.h"

#include <vector>

namespace sysinfo::platform {

/// The links of this machine's network namespace, asked from the kernel through kept netlink sockets. A
/// reading in steady state asks for counters only: names and kinds are asked again after the kernel announced
/// a change. Never blocks. Belongs to one thread at a time.
class LinkSocket {
public:
    /// Reads the counters of every link, and first the identities when a link changed, came or went. False
    /// when the kernel does not answer; the next call then starts anew.
    bool read();

    /// Of the last successful `read`, in ascending order of index.
    const std::vector<LinkIdentity>& identities() const { return identities_; }
    /// Of the last successful `read`; each belongs to one of `identities`.
    const std::vector<LinkCounters>& counters() const { return counters_; }
    /// Grows whenever the identities were asked again.
    uint64_t revision() const { return revision_; }

    /// Where the link of this index stands in `identities`; their size when there is none.
    size_t position(uint32_t index) const;

private:
    enum class Answer { whole, interrupted, failed };

    bool open();
    bool changeAnnounced();
    Answer readIdentities();
    Answer readCounters();
    template <class Parse>
    Answer ask(const void* request, size_t length, Parse parse);

    scutil::UniqueFd socket_;
    scutil::UniqueFd announcements_;
    uint32_t sequence_ = 0;
    bool identitiesKnown_ = false;
    uint64_t revision_ = 0;
    std::vector<char> buffer_;
    std::vector<LinkIdentity> identities_;
    std::vector<LinkCounters> counters_;
};

} // namespace sysinfo::platform
