#include "core/linux/DesktopIndex.h"

namespace sysinfo::platform {

namespace {

std::string_view fileName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

bool isLikelier(const InstalledEntry& a, const InstalledEntry& b) {
    if (a.entry.unlisted != b.entry.unlisted) return b.entry.unlisted;
    return a.entry.arguments < b.entry.arguments;
}

} // namespace

const InstalledEntry* DesktopIndex::find(const Table& table, std::string_view key) {
    const auto found = table.find(key);
    return found == table.end() ? nullptr : found->second;
}

void DesktopIndex::offer(Table& table, std::string_view key, const InstalledEntry& entry) {
    if (key.empty()) return;
    const auto [place, isNew] = table.try_emplace(key, &entry);
    if (!isNew && isLikelier(entry, *place->second)) place->second = &entry;
}

DesktopIndex::DesktopIndex(std::vector<InstalledEntry> entries) : entries_(std::move(entries)) {
    for (const auto& each : entries_) {
        ids_.emplace(each.id, &each);
        paths_.emplace(each.path, &each);
        offer(snaps_, each.entry.snap, each);
        const Program& program = each.program;
        // A link to a program that runs others ("/snap/bin/editor") tells nothing.
        if (each.entry.command.empty() || isLauncher(fileName(program.path))) continue;
        offer(programs_, program.path, each);
        for (const auto& folder : each.folders) offer(folders_, folder, each);
        if (!program.path.empty() && !program.isScript) continue;
        offer(names_, each.entry.program(), each);
        offer(names_, fileName(program.path), each);
    }
}

const InstalledEntry* DesktopIndex::byExecutable(std::string_view path, std::string_view name) const {
    if (path.empty()) return nullptr;
    if (const auto* entry = find(programs_, path)) return entry;
    for (size_t slash = path.rfind('/'); slash != path.npos && slash > 0; slash = path.rfind('/', slash - 1))
        if (const auto* entry = find(folders_, path.substr(0, slash))) return entry;
    const std::string_view file = fileName(path);
    return find(names_, isLauncher(file) ? name : file);
}

} // namespace sysinfo::platform
