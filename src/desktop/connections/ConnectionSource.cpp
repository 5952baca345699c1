#include "desktop/connections/ConnectionSource.h"

#include "HelperKit/SocketRecords.h"
#include "core/SocketList.h"

namespace quarn::desktop {

ConnectionSource::ConnectionSource(sysinfo::SystemRoot root) : root_(std::move(root)) {}
ConnectionSource::~ConnectionSource() = default;

std::optional<ConnectionRows> ConnectionSource::rows(const ConnectionView& view, Read read,
                                                     const SharedList<ProcInfo>& processes) {
    if (read == Read::anew || !hasTable_) hasTable_ = readAnew(processes);
    if (!hasTable_) return {};
    return ConnectionRows::of(latest_, view);
}

bool ConnectionSource::readAnew(const SharedList<ProcInfo>& processes) {
    if (!lister_) lister_ = std::make_unique<sysinfo::SocketLister>(root_);
    const auto sockets = lister_->list(sysinfo::SocketScope::all);
    if (!sockets) return false;
    ConnectionPresentation::ProcessNames names;
    names.reserve(processes.size());
    for (const ProcInfo& process : processes)
        if (!process.name.empty()) names.emplace(process.pid, process.name.view());
    latest_.clear();
    latest_.reserve(sockets->size());
    for (const auto* socket : *sockets)
        latest_.push_back(ConnectionPresentation::connection(toRecord(sysinfo::flatSocket(*socket)), names));
    return true;
}

} // namespace quarn::desktop
