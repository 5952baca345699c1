#include "core/linux/Files.h"
#include "core/linux/SocketDiag.h"
#include "core/linux/SocketHolders.h"
#include "core/linux/SocketTables.h"
#include "core/platform.h"

#include <bit>
#include <netinet/in.h>

namespace sysinfo::platform {

namespace {

struct TableSource {
    SocketTable table;
    const char* file;
};
constexpr std::array tableSources{
    TableSource{{IPPROTO_TCP, false}, "proc/net/tcp"},
    TableSource{{IPPROTO_TCP, true}, "proc/net/tcp6"},
    TableSource{{IPPROTO_UDP, false}, "proc/net/udp"},
    TableSource{{IPPROTO_UDP, true}, "proc/net/udp6"},
};

/// Entries that memory is set aside for. It costs nothing until it is used; a list that grows costs copies.
constexpr size_t usualMost = 32 * 1024;

/// Finds the entry of an inode. Open addressing in one block that is kept from listing to listing.
class InodeIndex {
public:
    /// Drops entries whose inode came before: a socket that moved while the table was read comes twice.
    void build(std::vector<SocketEntry>& entries) {
        slots_.assign(std::bit_ceil(entries.size() * 2 + 2), Slot{});
        size_t kept = 0;
        for (const auto& entry : entries) {
            if (entry.inode != 0) {
                Slot& slot = find(entry.inode);
                if (slot.inode != 0) continue;
                slot = {entry.inode, static_cast<uint32_t>(kept)};
            }
            entries[kept++] = entry;
        }
        entries.resize(kept);
    }

    /// nullptr for the inode of another kind of socket.
    SocketEntry* operator()(std::vector<SocketEntry>& entries, uint32_t inode) {
        if (inode == 0) return nullptr;
        const Slot& slot = find(inode);
        return slot.inode == 0 ? nullptr : &entries[slot.entry];
    }

private:
    struct Slot {
        uint32_t inode = 0; ///< 0 marks a free one
        uint32_t entry = 0;
    };

    Slot& find(uint32_t inode) {
        const size_t mask = slots_.size() - 1;
        size_t at = (inode * 0x9E3779B1U) & mask;
        while (slots_[at].inode != 0 && slots_[at].inode != inode) at = (at + 1) & mask;
        return slots_[at];
    }

    std::vector<Slot> slots_;
};

} // namespace

class SocketReader {
public:
    explicit SocketReader(const SystemRoot& root)
        : root_(root),
          sockstat_(root, "proc/net/sockstat"),
          sockstat6_(root, "proc/net/sockstat6"),
          holders_(root) {
        entries_.reserve(usualMost);
    }

    std::optional<std::span<const KernelSocket* const>> read(SocketScope scope) {
        listed_.clear();
        if (!readTables()) return {};
        index_.build(entries_);
        assignHolders();
        if (scope == SocketScope::all)
            for (const auto& entry : entries_)
                if (entry.socket.pid < 0) listed_.push_back(&entry.socket);
        return listed_;
    }

private:
    /// The tables that this kernel has (IPv6 may be off); false when it has none.
    bool readTables() {
        entries_.clear();
        const auto idle = hasIdle() ? SocketDiag::Idle::included : SocketDiag::Idle::left;
        bool any = false;
        for (const auto& [table, file] : tableSources) {
            if (root_.isHost() && diag_.read(table, idle, entries_)) {
                any = true;
            } else if (const auto text = readTable(root_.path(file))) {
                parseSocketTable(*text, table, entries_);
                any = true;
            }
        }
        return any;
    }

    bool hasIdle() {
        const auto all = sockstat_.read();
        const auto all6 = sockstat6_.read();
        return mayHaveIdleTcpSockets(all.value_or(""), all6.value_or(""));
    }

    /// Lists the sockets that have a holder, and stops walking when every socket has one.
    void assignHolders() {
        size_t left = 0;
        for (const auto& entry : entries_) left += entry.inode != 0;
        if (left == 0 || !holders_.start()) return;
        while (auto* holder = left > 0 ? holders_.next() : nullptr) {
            for (const uint32_t inode : holder->inodes) {
                auto* entry = index_(entries_, inode);
                if (!entry || entry->socket.pid >= 0) continue;
                entry->socket.pid = holder->pid;
                entry->socket.processName = holders_.name(*holder);
                listed_.push_back(&entry->socket);
                --left;
            }
        }
    }

    SystemRoot root_;
    KeptTable sockstat_;
    KeptTable sockstat6_;
    SocketDiag diag_;
    SocketHolders holders_;
    InodeIndex index_;
    std::vector<SocketEntry> entries_;
    std::vector<const KernelSocket*> listed_;
};

std::shared_ptr<SocketReader> openSocketReader(const SystemRoot& root) {
    return std::make_shared<SocketReader>(root);
}

std::optional<std::span<const KernelSocket* const>> readSockets(SocketReader& reader, SocketScope scope) {
    return reader.read(scope);
}

} // namespace sysinfo::platform
