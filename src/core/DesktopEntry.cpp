#include "core/DesktopEntry.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>
#include <optional>

namespace sysinfo {

namespace {

// clang-format off
constexpr std::array<std::string_view, 29> launchers{
    "bash", "bwrap", "dash", "dbus-launch", "dbus-run-session", "flatpak", "gjs", "gjs-console", "gtk-launch",
    "java", "kdesu", "mono", "mono-sgen", "node", "nodejs", "perl", "php", "pkexec", "python", "ruby", "sh",
    "snap", "sudo", "systemctl", "systemd-run", "wine", "wish", "xdg-open", "zsh"};
// clang-format on

/// The next word of a command; a quoted one may hold blanks.
std::string_view takeArgument(std::string_view& command) {
    command = scutil::trimmed(command);
    if (!command.starts_with('"')) return scutil::takeWord(command);
    command.remove_prefix(1);
    return scutil::takeUntil(command, '"');
}

std::string_view fileName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

void takeCommand(DesktopEntry& entry, std::string_view command) {
    std::string_view program;
    do { // "env LANG=C program" sets variables first
        program = takeArgument(command);
    } while (!program.empty() && (fileName(program) == "env" || program.find('=') != std::string_view::npos));
    if (isLauncher(fileName(program))) return;
    entry.command = program;
    while (!(command = scutil::trimmed(command)).empty())
        if (!takeArgument(command).starts_with('%')) ++entry.arguments;
}

bool isTerminalEmulator(std::string_view categories) {
    while (!categories.empty())
        if (scutil::takeUntil(categories, ';') == "TerminalEmulator") return true;
    return false;
}

/// The language tag of "Name[de]" when the key is one of `name`'s; nullopt for any other key.
std::optional<std::string_view> tagOf(std::string_view key, std::string_view name) {
    if (!key.starts_with(name)) return {};
    key.remove_prefix(name.size());
    if (key.empty()) return key;
    if (key.size() < 2 || key.front() != '[' || key.back() != ']') return {};
    return key.substr(1, key.size() - 2);
}

} // namespace

bool isLauncher(std::string_view program) {
    while (!program.empty() && (scutil::isDigit(program.back()) || program.back() == '.'))
        program.remove_suffix(1); // "python3.11"
    return std::find(launchers.begin(), launchers.end(), program) != launchers.end();
}

int localeRank(std::string_view tag, std::string_view locale) {
    if (tag.empty()) return 1;
    const size_t at = locale.find('@');
    const std::string_view modifier = at == std::string_view::npos ? "" : locale.substr(at + 1);
    const std::string_view country = locale.substr(0, std::min(locale.find('.'), at));
    const std::string_view language = country.substr(0, country.find('_'));
    const std::string_view base = scutil::takeUntil(tag, '@');
    if (base.empty() || (!tag.empty() && tag != modifier)) return 0;
    const int modified = tag.empty() ? 0 : 1;
    if (base == country) return (country == language ? 2 : 4) + modified;
    return base == language ? 2 + modified : 0;
}

std::string_view DesktopEntry::program() const { return fileName(command); }

DesktopEntry parseDesktopEntry(std::string_view text, std::string_view locale) {
    DesktopEntry entry;
    bool isMain = false;
    int nameRank = 0;
    while (!text.empty()) {
        std::string_view line = scutil::trimmed(scutil::takeLine(text));
        if (line.starts_with('[')) {
            if (isMain) break; // actions follow, with commands of their own
            isMain = line == "[Desktop Entry]";
            continue;
        }
        const std::string_view key = scutil::trimmed(scutil::takeUntil(line, '='));
        const std::string_view value = scutil::trimmed(line);
        if (!isMain) continue;
        if (const auto tag = tagOf(key, "Name")) {
            if (const int rank = localeRank(*tag, locale); rank > nameRank && !value.empty()) {
                entry.name = value;
                nameRank = rank;
            }
        } else if (key == "Exec") {
            if (entry.command.empty()) takeCommand(entry, value);
        } else if (key == "Icon") {
            if (entry.icon.empty()) entry.icon = value;
        } else if (key == "Type") {
            entry.isApplication = value == "Application";
        } else if (key == "Hidden") {
            entry.removed = value == "true";
        } else if (key == "NoDisplay") {
            entry.unlisted = value == "true";
        } else if (key == "Categories") {
            entry.isTerminal = isTerminalEmulator(value);
        } else if (key == "X-SnapInstanceName") {
            entry.snap = value;
        }
    }
    return entry;
}

} // namespace sysinfo
