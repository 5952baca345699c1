#pragma once

#include "core/AppIdentity.h"
#include "core/SystemRoot.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sysinfo {

/// Knows the applications that are installed and says which of them a process belongs to.
///
/// An application's bundle is the folder "….app" that holds the executable. Elsewhere it is known by the file
/// that describes it: its entry in the desktop's menus, the file of a system service's unit, an AppImage, a
/// container's control group. That path, its bundle path here, is the key under which use is charged and kept
/// for years; so it never holds what differs from one start to the next. What a person starts in a terminal
/// belongs to itself, not to the terminal.
///
/// Asking for a process reads a file or two of it (about 10 µs), so callers keep the answers (ProcessOwners).
/// Menus are read with the first question (some 10 ms). Callable from any thread; questions wait for each
/// other.
class AppOwnerIndex {
public:
    /// `locale` is the language of names, written as in the variable LANG.
    explicit AppOwnerIndex(const SystemRoot& root, std::string locale = {});
    ~AppOwnerIndex();
    AppOwnerIndex(const AppOwnerIndex&) = delete;
    AppOwnerIndex& operator=(const AppOwnerIndex&) = delete;

    /// The outermost folder in `path` whose name ends with ".app" in any letter case and is longer than that;
    /// repeated slashes are joined. Touches no file.
    static std::optional<std::string> bundlePath(std::string_view path);

    struct Process {
        int64_t pid = 0;
        int64_t ppid = 0;
        std::string_view name;
        std::string_view path; ///< of the executable, empty when unknown
    };
    /// The bundle path of the application that a process belongs to; nullopt when it belongs to none. Equal
    /// answers share one text.
    std::optional<Text> bundleOf(const Process& process);

    /// Who is behind a bundle path, also one that was noted long ago: the name then comes from the path.
    AppIdentity identity(std::string_view bundle);
    AppOwner owner(std::string_view bundle);

    /// A number that changes when answers may have changed, because applications came or went. Looks at the
    /// folders of menus and units at most every 10 seconds of `now`, seconds on any steady scale.
    uint64_t revision(double now);

private:
    class Resolver;
    std::unique_ptr<Resolver> resolver_;
};

/// What a process that belongs to no application is grouped by: the file name of its executable, or the
/// process's own name where the executable is unknown, runs scripts or has no file.
std::string_view executableName(std::string_view name, std::string_view path);

} // namespace sysinfo
