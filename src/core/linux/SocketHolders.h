#pragma once

#include "core/SystemRoot.h"
#include "core/UniqueFd.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// The inode of a descriptor's link "socket:[12345]", nullopt for any other link.
std::optional<uint32_t> parseSocketLink(std::string_view target);

/// Which process holds which sockets: one walk over the descriptors of every process.
///
/// Descriptors change only when a thread of their process runs, even those received from another process. So
/// while the CPU clock of a process stands still, the walk of last time still holds. (Two processes that
/// share one descriptor table, which hardly any program does, may be told apart wrongly for as long as one of
/// them sleeps.) Under a captured root every process is walked each time.
///
/// Usage: `start`, then `next` until the caller has what it wants or there is no more.
class SocketHolders {
public:
    explicit SocketHolders(const SystemRoot& root);

    struct Holder {
        int32_t pid = 0;
        std::optional<uint64_t> clock; ///< before its descriptors were walked
        std::vector<uint32_t> inodes;  ///< of all kinds of sockets, in the order of descriptors
        std::optional<std::string> name;
    };

    /// Lists the processes anew; false when there is no process table.
    bool start();
    /// The next process in ascending order of pid, its descriptors walked; null after the last one. A process
    /// that may not be inspected has no sockets.
    Holder* next();
    /// The name people see, asked of the system only once for each program that a process runs. Valid as long
    /// as the holder.
    std::string_view name(Holder& holder) const;

private:
    bool listPids();
    void walk(Holder& holder);
    enum class Probed : uint8_t { all, some, denied };
    Probed probe(Holder& holder, int folder, uint64_t count, unsigned& nextDescriptor);
    void list(Holder& holder, unsigned firstDescriptor);
    enum class Link : uint8_t { present, missing, denied };
    Link readDescriptor(Holder& holder, int folder, unsigned descriptor);

    scutil::UniqueFd proc_;
    bool usesClocks_;
    bool countsDescriptors_; ///< the size of a descriptor folder is the number of descriptors
    std::vector<char> listing_;
    std::vector<int32_t> pids_;
    std::vector<unsigned> descriptors_;
    std::vector<Holder> holders_; ///< ascending by pid
    std::vector<Holder> former_;  ///< storage of the list before, reused
    size_t at_ = 0;
};

} // namespace sysinfo::platform
