#pragma once

#include "core/linux/DesktopFolders.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace sysinfo::platform {

/// Finds the entry of the menus that an application goes by. Where several fit, those that menus show, that
/// give their program the fewest arguments and that come first win: of an office suite's many entries that
/// start one program it is the general one.
class DesktopIndex {
public:
    DesktopIndex() = default;
    explicit DesktopIndex(std::vector<InstalledEntry> entries);
    DesktopIndex(DesktopIndex&&) = default;
    DesktopIndex& operator=(DesktopIndex&&) = default;

    /// Null when there is none; valid as long as this index.
    const InstalledEntry* byId(std::string_view id) const { return find(ids_, id); }
    const InstalledEntry* byPath(std::string_view path) const { return find(paths_, path); }
    const InstalledEntry* bySnap(std::string_view package) const { return find(snaps_, package); }

    /// The application whose program a process runs: the very file; a file in the application's own folder;
    /// or a file of the same name, where the entry starts a script (which runs the program from elsewhere) or
    /// something that was not found. `name` is the process's own, for what interpreters run.
    const InstalledEntry* byExecutable(std::string_view path, std::string_view name) const;

private:
    using Table = std::unordered_map<std::string_view, const InstalledEntry*>;
    static const InstalledEntry* find(const Table& table, std::string_view key);
    static void offer(Table& table, std::string_view key, const InstalledEntry& entry);

    std::vector<InstalledEntry> entries_; ///< the tables point into it
    Table ids_, paths_, snaps_, programs_, folders_, names_;
};

} // namespace sysinfo::platform
