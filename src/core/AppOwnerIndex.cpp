#include "core/AppOwnerIndex.h"

#include "core/DesktopEntry.h"
#include "core/Scan.h"

namespace sysinfo {

namespace {

bool isBundleName(std::string_view name) {
    constexpr std::string_view suffix = ".app";
    if (name.size() <= suffix.size()) return false;
    const std::string_view end = name.substr(name.size() - suffix.size());
    const auto isLetter = [](char c, char lower) { return c == lower || c == lower - 'a' + 'A'; };
    return end[0] == '.' && isLetter(end[1], 'a') && isLetter(end[2], 'p') && isLetter(end[3], 'p');
}

} // namespace

std::optional<std::string> AppOwnerIndex::bundlePath(std::string_view path) {
    std::string bundle;
    bool needsSlash = path.starts_with('/');
    while (!path.empty()) {
        const std::string_view piece = scutil::takeUntil(path, '/');
        if (piece.empty()) continue;
        if (needsSlash) bundle += '/';
        bundle += piece;
        needsSlash = true;
        if (isBundleName(piece)) return bundle;
    }
    return {};
}

std::string_view executableName(std::string_view name, std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    // A program that was put together in memory has another "file" at each start.
    const bool isPassing = isLauncher(file) || file.starts_with("memfd:");
    return file.empty() || (isPassing && !name.empty()) ? name : file;
}

} // namespace sysinfo
