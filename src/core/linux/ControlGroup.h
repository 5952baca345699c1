#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the name of a process's control group says of whom it belongs to. Service managers and container
/// engines put each thing they start into a group of its own. Pure functions.
namespace sysinfo::platform {

/// The group of the service manager in proc/<pid>/cgroup ("/system.slice/ssh.service"): of the one hierarchy
/// of version 2, or where that is not used, of the one that the manager keeps for itself. Empty for anything
/// else.
std::string_view parseControlGroup(std::string_view text);

/// Whom a group belongs to.
struct GroupOwner {
    enum class Kind {
        none,        ///< it does not tell: a login session, a terminal's window, the root
        application, ///< something that a desktop started; `ids` say what
        snap,
        container, ///< also a virtual machine
        service,
    };
    Kind kind = Kind::none;
    bool ofUser = false; ///< run by a user's own service manager
    /// The name of the unit without what differs from one start to the next: "ssh.service", "getty@.service",
    /// "app-org.kde.kate.scope".
    std::string unit;
    std::string instance; ///< that of a service started from a template ("getty@tty1.service")
    /// The same under the group of its manager: a key that holds after the next start, too.
    std::string path;
    std::vector<std::string> ids; ///< of the application or snap, the likeliest first
};
GroupOwner ownerOfGroup(std::string_view path);

/// Undoes the escapes "\x2d" of a unit's name.
std::string unescapeUnit(std::string_view text);

/// What people call the thing behind a GroupOwner::path whose files are not there any more: "ssh",
/// "docker 3f2a91c04b1e".
std::string nameOfGroup(std::string_view path);

} // namespace sysinfo::platform
