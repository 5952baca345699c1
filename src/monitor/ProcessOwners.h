#pragma once

#include "core/AppOwnerIndex.h"
#include "monitor/Snapshot.h"

#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace quarn {

using sysinfo::AppIdentity;
using sysinfo::AppOwner;
using sysinfo::AppOwnerIndex;

/// Whom one process instance is charged to.
struct ProcessOwner {
    int64_t pid = 0;
    std::optional<uint64_t> start; ///< microseconds since the epoch
    Text path;                     ///< of the executable when the owner was asked for
    std::optional<Text> bundle;    ///< path of the application's bundle
    Text app;              ///< the bundle, or without one the executable's name; equal ones share one text
    double askAgainAt = 0; ///< seconds since the epoch
    uint64_t revision = 0; ///< of the index that answered
};

/// The owners of the latest process list, asked for once and kept while a process stays what it is. A new
/// list in which nothing changed costs about 10 ns a process and touches no file.
///
/// A process is asked about again when its executable changes; once when it is some seconds old, since
/// desktops move what they start into its place only after the start; and in turn a few with each list, as
/// applications come and go. Belongs to one thread at a time.
class ProcessOwners {
public:
    /// The index may be shared with others.
    explicit ProcessOwners(std::shared_ptr<AppOwnerIndex> index) : index_(std::move(index)) {}

    /// One owner for each process, in the same order; valid until the next call. `processes` ascend by pid as
    /// in a Snapshot (otherwise more is asked for than needed); `now` is in seconds since the epoch. Exactly
    /// these processes are remembered.
    std::span<const ProcessOwner> update(std::span<const ProcInfo> processes, double now);

    std::span<const ProcessOwner> owners() const { return owners_; }
    /// Changes when applications came or went.
    uint64_t revision() const { return revision_; }

private:
    enum class Reason { newList, turn };
    void bringUpToDate(ProcessOwner& owner, const ProcInfo& process, Reason reason, double now);
    Text shared(std::string_view name);
    void ask(ProcessOwner& owner, const ProcInfo& process, double now);

    std::shared_ptr<AppOwnerIndex> index_;
    std::vector<ProcessOwner> owners_;
    std::vector<ProcessOwner> former_;            ///< the part of the list before that pids moved in
    std::unordered_map<std::string, Text> names_; ///< of executables
    uint64_t revision_ = 0;
    size_t staleBudget_ = 0; ///< how many more outdated answers this update may replace
    size_t turn_ = 512;      ///< whose turn it is; of the few processes of a small machine none soon
};

} // namespace quarn
