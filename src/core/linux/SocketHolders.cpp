#include "core/linux/SocketHolders.h"

#include "core/ProcessSampler.h"
#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/ProcessTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sysinfo::platform {

namespace {

constexpr size_t listingSize = 128 * 1024;

/// "<pid>/<name>", to be opened beside the folder of processes.
std::array<char, 24> entryOf(int32_t pid, std::string_view name) {
    std::array<char, 24> path{};
    char* end = std::to_chars(path.data(), path.data() + 12, pid).ptr;
    *end++ = '/';
    std::copy(name.begin(), name.end(), end);
    return path;
}

/// Calls `take` with the name of each entry of the folder; false when it cannot be read.
template <class Take>
bool eachEntry(int folder, std::vector<char>& buffer, Take take) {
    if (buffer.empty()) buffer.resize(listingSize);
    for (;;) {
        const long length = ::syscall(SYS_getdents64, folder, buffer.data(), buffer.size());
        if (length <= 0) return length == 0;
        for (long at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
            at += entry->d_reclen;
            take(std::string_view(entry->d_name));
        }
    }
}

/// False where proc shows the processes of another namespace than the one that pids are taken from.
bool pidsAreOurs(int proc) {
    std::array<char, 16> target{};
    const auto length = ::readlinkat(proc, "self", target.data(), target.size());
    return length > 0 &&
           scutil::toNumber<int32_t>({target.data(), static_cast<size_t>(length)}) == ::getpid();
}

} // namespace

std::optional<uint32_t> parseSocketLink(std::string_view target) {
    constexpr std::string_view prefix = "socket:[";
    if (!target.starts_with(prefix) || !target.ends_with(']')) return {};
    target.remove_prefix(prefix.size());
    target.remove_suffix(1);
    return scutil::toNumber<uint32_t>(target);
}

SocketHolders::SocketHolders(const SystemRoot& root)
    : proc_(::open(root.path("proc").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      usesClocks_(root.isHost() && pidsAreOurs(proc_.get()) && processClock(::getpid())) {
    // Kernels before 6.2 answer 0.
    struct stat own {};
    countsDescriptors_ = root.isHost() && ::fstatat(proc_.get(), "self/fd", &own, 0) == 0 && own.st_size > 0;
}

bool SocketHolders::start() {
    at_ = 0;
    if (!listPids()) return false;
    former_.swap(holders_);
    holders_.clear();
    auto known = former_.begin();
    for (const int32_t pid : pids_) {
        while (known != former_.end() && known->pid < pid) ++known;
        if (known != former_.end() && known->pid == pid)
            holders_.push_back(std::move(*known));
        else
            holders_.emplace_back().pid = pid;
    }
    return true;
}

bool SocketHolders::listPids() {
    pids_.clear();
    if (::lseek(proc_.get(), 0, SEEK_SET) < 0) return false;
    const bool listed = eachEntry(proc_.get(), listing_, [&](std::string_view name) {
        if (const auto pid = scutil::toNumber<int32_t>(name); pid && *pid > 0) pids_.push_back(*pid);
    });
    std::sort(pids_.begin(), pids_.end());
    return listed;
}

SocketHolders::Holder* SocketHolders::next() {
    if (at_ == holders_.size()) return nullptr;
    Holder& holder = holders_[at_++];
    // Taken first: what runs while its descriptors are walked is walked again next time.
    const auto clock = usesClocks_ ? processClock(holder.pid) : std::nullopt;
    if (clock && clock == holder.clock) return &holder;
    holder.clock = clock;
    holder.name.reset();
    holder.inodes.clear();
    walk(holder);
    return &holder;
}

void SocketHolders::walk(Holder& holder) {
    unsigned nextDescriptor = 0;
    if (countsDescriptors_) {
        const scutil::UniqueFd folder(
            ::openat(proc_.get(), entryOf(holder.pid, "fd").data(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat status {};
        if (!folder || ::fstat(folder.get(), &status) != 0) return;
        const auto count = static_cast<uint64_t>(status.st_size);
        const auto probed = probe(holder, folder.get(), count, nextDescriptor);
        if (probed == Probed::denied) return;
        // A process that ran meanwhile may have taken a low number, which then was met instead of a higher
        // one.
        if (probed == Probed::all && holder.clock && processClock(holder.pid) == holder.clock) return;
    }
    list(holder, nextDescriptor);
}

/// Descriptors are numbered from 0 with few gaps, so asking for each number in turn costs a quarter less than
/// listing them first. Stops where the gaps are too many: then `nextDescriptor` and those after it are left.
SocketHolders::Probed SocketHolders::probe(Holder& holder, int folder, uint64_t count,
                                           unsigned& nextDescriptor) {
    uint64_t found = 0;
    uint64_t missesLeft = count / 2 + 8;
    for (; found < count; ++nextDescriptor) {
        switch (readDescriptor(holder, folder, nextDescriptor)) {
        case Link::present: ++found; break;
        case Link::denied: return Probed::denied;
        case Link::missing:
            if (missesLeft-- == 0) return Probed::some;
        }
    }
    return Probed::all;
}

void SocketHolders::list(Holder& holder, unsigned firstDescriptor) {
    const auto folder = openForReadingAt(proc_.get(), entryOf(holder.pid, "fd").data());
    if (!folder) return;
    descriptors_.clear();
    eachEntry(folder.get(), listing_, [&](std::string_view name) {
        const auto descriptor = scutil::toNumber<unsigned>(name);
        if (descriptor && *descriptor >= firstDescriptor) descriptors_.push_back(*descriptor);
    });
    std::sort(descriptors_.begin(), descriptors_.end());
    for (const unsigned descriptor : descriptors_) readDescriptor(holder, folder.get(), descriptor);
}

SocketHolders::Link SocketHolders::readDescriptor(Holder& holder, int folder, unsigned descriptor) {
    std::array<char, 16> name{};
    std::to_chars(name.data(), name.data() + name.size() - 1, descriptor);
    std::array<char, 64> target; // longer links are cut, and are no sockets
    const auto length = ::readlinkat(folder, name.data(), target.data(), target.size());
    if (length < 0) return errno == ENOENT ? Link::missing : Link::denied;
    if (const auto inode = parseSocketLink({target.data(), static_cast<size_t>(length)}))
        holder.inodes.push_back(*inode);
    return Link::present;
}

std::string_view SocketHolders::name(Holder& holder) const {
    if (!holder.name) {
        std::array<char, 4096> path;
        const auto length =
            ::readlinkat(proc_.get(), entryOf(holder.pid, "exe").data(), path.data(), path.size());
        std::string_view program(path.data(), length > 0 ? static_cast<size_t>(length) : 0);
        constexpr std::string_view deleted = " (deleted)";
        if (program.ends_with(deleted)) program.remove_suffix(deleted.size());
        std::string command;
        const auto file = openForReadingAt(proc_.get(), entryOf(holder.pid, "comm").data());
        if (file && readAll(file.get(), command) && command.ends_with('\n')) command.pop_back();
        holder.name = std::string(displayName(command, program));
    }
    return *holder.name;
}

} // namespace sysinfo::platform
