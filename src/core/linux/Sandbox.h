#pragma once

#include "core/SystemRoot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Applications that bring their own file system along, told by the paths of their executables. Parsers are
/// pure.
namespace sysinfo::platform {

/// The application's id in the file that Flatpak puts at the root of each sandbox; empty when it names none.
std::string_view parseFlatpakInfo(std::string_view text);
/// That of one process; nullopt when it is in no such sandbox or may not be asked.
std::optional<std::string> flatpakOf(const SystemRoot& root, int64_t pid);

/// The snap package that the executable at `path` lies in ("/snap/firefox/4848/…"); empty for any other path
/// and for packages that are only the ground on which others stand.
std::string_view snapOfPath(std::string_view path);

/// Where the file system of an AppImage is mounted, when the executable at `path` lies in one
/// ("/tmp/.mount_EditXy12ab"); otherwise empty.
std::string_view appImageMount(std::string_view path);
/// Whether the executable at `path` is an AppImage itself.
bool isAppImage(std::string_view path);
/// The AppImage file that a process inside such a mount was started from; nullopt when that may not be known.
std::optional<std::string> appImageOf(const SystemRoot& root, int64_t pid);

/// What is set for one variable in proc/<pid>/environ; empty when it is not set.
std::string_view parseEnvironment(std::string_view text, std::string_view variable);

/// "Edit" of ".../Edit-1.4.2-x86_64.AppImage": the file's name without version and architecture.
std::string appImageName(std::string_view path);

} // namespace sysinfo::platform
