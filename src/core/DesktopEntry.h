#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sysinfo {

/// What is used of an application's entry in the desktop's menus. A text is empty when the entry lacks it.
struct DesktopEntry {
    std::string name;     ///< in the language asked for, as far as the entry knows it
    std::string command;  ///< the program it starts, as written: "firefox", "/opt/edit/bin/edit"; empty when
                          ///< that only runs others (an interpreter, a sandbox)
    std::string icon;     ///< a name, or the path of a picture
    std::string snap;     ///< the snap package that it comes from
    size_t arguments = 0; ///< of the command, without those that stand for opened files
    bool isApplication = false; ///< neither a link nor a folder
    bool removed = false;       ///< to be taken as if it were not there, and to hide others of its name
    bool unlisted = false;      ///< not shown in menus
    bool isTerminal = false;    ///< people start other programs in it

    /// File name of the program, without folder.
    std::string_view program() const;
};

/// Never fails. `locale` is written as in the variable LANG ("de_AT.UTF-8").
DesktopEntry parseDesktopEntry(std::string_view text, std::string_view locale = {});

/// How well the language tag of a text ("de", "sr@latin") suits a locale: 0 not at all, otherwise the higher
/// the better. The empty tag suits every locale a little.
int localeRank(std::string_view tag, std::string_view locale);

/// Whether a program of that file name runs others, so that it says nothing about what runs: interpreters,
/// shells, sandboxes and the like.
bool isLauncher(std::string_view program);

} // namespace sysinfo
