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
    explicit SocketReader(const SystemRoot& root) : root_(root), holders_(root) {}

    bool read(SocketScope scope, std::vector<KernelSocket>& out) {
        out.clear();
        if (!readTables()) return false;
        index_.build(entries_);
        assignHolders(out);
        if (scope == SocketScope::all)
            for (const auto& entry : entries_)
                if (entry.socket.pid < 0) out.push_back(entry.socket);
        return true;
    }

private:
    /// The tables that this kernel has (IPv6 may be off); false when it has none.
    bool readTables() {
        entries_.clear();
        bool any = false;
        for (const auto& [table, file] : tableSources) {
            if (root_.isHost() && diag_.read(table, entries_)) {
                any = true;
            } else if (const auto text = readTable(root_.path(file))) {
                parseSocketTable(*text, table, entries_);
                any = true;
            }
        }
        return any;
    }

    /// Appends the sockets that have a holder, and stops walking when every socket has one.
    void assignHolders(std::vector<KernelSocket>& out) {
        size_t left = 0;
        for (const auto& entry : entries_) left += entry.inode != 0;
        if (left == 0 || !holders_.start()) return;
        while (auto* holder = left > 0 ? holders_.next() : nullptr) {
            for (const uint32_t inode : holder->inodes) {
                auto* entry = index_(entries_, inode);
                if (!entry || entry->socket.pid >= 0) continue;
                entry->socket.pid = holder->pid;
                entry->socket.processName = holders_.name(*holder);
                out.push_back(entry->socket);
                --left;
            }
        }
    }

    SystemRoot root_;
    SocketDiag diag_;
    SocketHolders holders_;
    InodeIndex index_;
    std::vector<SocketEntry> entries_;
};

std::shared_ptr<SocketReader> openSocketReader(const SystemRoot& root) {
    return std::make_shared<SocketReader>(root);
}

bool readSockets(SocketReader& reader, SocketScope scope, std::vector<KernelSocket>& out) {
    return reader.read(scope, out);
}

} // namespace sysinfo::platform
