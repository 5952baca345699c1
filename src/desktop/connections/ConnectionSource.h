#pragma once

#include "core/SystemRoot.h"
#include "inventory/ConnectionRows.h"
#include "monitor/Snapshot.h"

#include <memory>

namespace sysinfo {
class SocketLister;
}

namespace quarn::desktop {

/// Reads the sockets of the machine and makes the rows of the list. Both take milliseconds with thousands of
/// sockets, so it lives on a queue of its own and belongs to that.
class ConnectionSource {
public:
    explicit ConnectionSource(sysinfo::SystemRoot root);
    ~ConnectionSource();

    enum class Read { anew, last }; ///< `last`: the sockets of the time before, where only the view changed
    /// nullopt when the kernel tells of no socket table at all.
    std::optional<ConnectionRows> rows(const ConnectionView& view, Read read,
                                       const SharedList<ProcInfo>& processes);

private:
    bool readAnew(const SharedList<ProcInfo>& processes);

    sysinfo::SystemRoot root_;
    std::unique_ptr<sysinfo::SocketLister> lister_;
    std::vector<Connection> latest_;
    bool hasTable_ = false;
};

} // namespace quarn::desktop
