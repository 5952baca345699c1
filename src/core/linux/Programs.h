#pragma once

#include "core/SystemRoot.h"

#include <string>
#include <string_view>
#include <vector>

namespace sysinfo::platform {

/// The file behind the first word of a command.
struct Program {
    std::string path; ///< with links followed, as that machine sees it; empty when there is no such file
    bool isScript = false;
};
/// `command` is a path, or a name that is looked for in `folders` and then in the usual ones.
Program findProgram(const SystemRoot& root, std::string_view command,
                    const std::vector<std::string>& folders);

/// `path` with every link followed as on that machine; empty when something on the way is missing.
std::string followLinks(const SystemRoot& root, std::string_view path);

/// The folders that exist for what belongs to a program of that name: "/usr/lib/chromium".
std::vector<std::string> namedFolders(const SystemRoot& root, std::string_view program);

/// The folder that an application has to itself, told by where its program lies: "/opt/editor" of
/// "/opt/editor/bin/edit". Empty where many share the folder.
std::string_view installFolder(std::string_view program);

} // namespace sysinfo::platform
