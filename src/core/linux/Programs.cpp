#include "core/linux/Programs.h"

#include "core/Scan.h"
#include "core/linux/Files.h"

#include <array>

namespace sysinfo::platform {

namespace {

std::string inRoot(const SystemRoot& root, std::string_view path) { return root.path(path.substr(1)); }

bool startsWithHashBang(const std::string& file) {
    const auto fd = openForReading(file.c_str());
    std::vector<char> start(2);
    return fd && readOnce(fd.get(), start) == 2 && start[0] == '#' && start[1] == '!';
}

std::string_view folderOf(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos ? std::string_view() : path.substr(0, slash);
}

} // namespace

std::string followLinks(const SystemRoot& root, std::string_view path) {
    int hops = 40;
    std::string done;
    std::string rest(path);
    while (!rest.empty()) {
        std::string_view left = rest;
        const std::string piece(scutil::takeUntil(left, '/'));
        std::string remaining(left);
        if (piece == "..") {
            done = folderOf(done);
        } else if (!piece.empty() && piece != ".") {
            const std::string next = done + '/' + piece;
            if (const auto target = readLink(inRoot(root, next))) {
                if (--hops == 0) return {};
                if (target->starts_with('/')) done.clear();
                remaining = *target + '/' + remaining;
            } else {
                done = next;
            }
        }
        rest = std::move(remaining);
    }
    return !done.empty() && exists(inRoot(root, done)) ? done : std::string();
}

Program findProgram(const SystemRoot& root, std::string_view command,
                    const std::vector<std::string>& folders) {
    Program program;
    if (command.starts_with('/')) {
        program.path = followLinks(root, command);
    } else if (!command.empty() && command.find('/') == command.npos) {
        const auto lookIn = [&](std::string_view folder) {
            const std::string path = std::string(folder) + '/' + std::string(command);
            if (program.path.empty()) program.path = followLinks(root, path);
        };
        for (const auto& folder : folders) lookIn(folder);
        for (const char* folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/local/games", "/usr/games",
                                   "/snap/bin", "/usr/sbin", "/sbin"})
            lookIn(folder);
    }
    if (!program.path.empty()) program.isScript = startsWithHashBang(inRoot(root, program.path));
    return program;
}

std::vector<std::string> namedFolders(const SystemRoot& root, std::string_view program) {
    std::vector<std::string> folders;
    if (program.empty()) return folders;
    for (const char* parent : {"/usr/lib/", "/usr/lib64/", "/usr/libexec/", "/usr/local/lib/", "/opt/"})
        if (std::string path = parent + std::string(program); exists(inRoot(root, path)))
            folders.push_back(std::move(path));
    return folders;
}

std::string_view installFolder(std::string_view program) {
    std::string_view folder = folderOf(program);
    if (folder.ends_with("/bin")) folder = folderOf(folder);
    constexpr std::array<std::string_view, 7> prefixes{"/opt/",        "/usr/lib/",       "/usr/lib64/",
                                                       "/usr/share/",  "/usr/local/lib/", "/usr/local/share/",
                                                       "/usr/libexec/"};
    std::string_view below;
    for (const auto prefix : prefixes)
        if (folder.starts_with(prefix)) below = folder.substr(prefix.size());
    constexpr std::string_view ofUser = "/.local/share/";
    if (const size_t at = folder.find(ofUser); at != folder.npos) below = folder.substr(at + ofUser.size());
    // Libraries of one architecture and the versions of Java are no application's own.
    const std::string_view first = below.substr(0, below.find('/'));
    const bool isShared = first.empty() || first.find("-linux-gnu") != first.npos || first == "jvm";
    return isShared ? std::string_view() : folder;
}

} // namespace sysinfo::platform
