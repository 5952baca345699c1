#include "ui/modules/DesktopEntry.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>

namespace quarn {

namespace {

/// Programs that run others: all that they run would get the picture of one.
constexpr std::array<std::string_view, 14> launchers{"bash", "flatpak", "gjs",    "java",    "node",
                                                     "perl", "pkexec",  "python", "python3", "ruby",
                                                     "sh",   "snap",    "sudo",   "wine"};

/// The program of a command: the first word that is no setting of a variable ("env LANG=C program").
std::string programOf(std::string_view command) {
    while (true) {
        std::string_view word;
        command = scutil::trimmed(command);
        if (command.starts_with('"')) {
            command.remove_prefix(1);
            word = scutil::takeUntil(command, '"');
        } else {
            word = scutil::takeWord(command);
        }
        if (word.empty()) return {};
        const std::string_view name = word.substr(word.rfind('/') + 1);
        if (name == "env" || word.find('=') != std::string_view::npos) continue;
        const bool isLauncher = std::find(launchers.begin(), launchers.end(), name) != launchers.end();
        return isLauncher ? std::string() : std::string(name);
    }
}

} // namespace

DesktopEntry parseDesktopEntry(std::string_view text) {
    DesktopEntry entry;
    bool isMain = false;
    while (!text.empty()) {
        std::string_view line = scutil::trimmed(scutil::takeLine(text));
        if (line.starts_with('[')) {
            if (isMain) break; // actions follow, with commands of their own
            isMain = line == "[Desktop Entry]";
            continue;
        }
        const std::string_view key = scutil::trimmed(scutil::takeUntil(line, '='));
        if (!isMain) continue;
        if (key == "Exec" && entry.program.empty()) entry.program = programOf(line);
        if (key == "Icon" && entry.icon.empty()) entry.icon = scutil::trimmed(line);
    }
    return entry;
}

} // namespace quarn
