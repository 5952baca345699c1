#include "core/linux/Sandbox.h"

#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/ProcessFiles.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

bool endsWithIgnoringCase(std::string_view text, std::string_view lower) {
    const auto same = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; };
    return text.size() >= lower.size() &&
           std::equal(lower.begin(), lower.end(), text.end() - static_cast<ptrdiff_t>(lower.size()),
                      [&](char l, char t) { return same(t, l); });
}

constexpr std::string_view appImageSuffix = ".appimage";

} // namespace

std::string_view parseFlatpakInfo(std::string_view text) {
    bool isApplication = false;
    while (!text.empty()) {
        std::string_view line = scutil::trimmed(scutil::takeLine(text));
        if (line.starts_with('[')) isApplication = line == "[Application]";
        if (isApplication && scutil::trimmed(scutil::takeUntil(line, '=')) == "name")
            return scutil::trimmed(line);
    }
    return {};
}

std::optional<std::string> flatpakOf(const SystemRoot& root, int64_t pid) {
    const auto text = readAttribute(processFile(root, pid, "root/.flatpak-info"));
    if (!text) return {};
    const auto id = parseFlatpakInfo(*text);
    return id.empty() ? std::nullopt : std::optional<std::string>(id);
}

std::string_view snapOfPath(std::string_view path) {
    for (const std::string_view prefix : {"/snap/", "/var/lib/snapd/snap/"}) {
        if (!path.starts_with(prefix)) continue;
        const std::string_view rest = path.substr(prefix.size());
        const std::string_view name = rest.substr(0, rest.find('/'));
        const bool isGround =
            name == "bin" || name == "bare" || name == "snapd" ||
            (name.starts_with("core") && name.find_first_not_of("0123456789", 4) == name.npos);
        return isGround || name.size() == rest.size() ? std::string_view() : name;
    }
    return {};
}

std::string_view appImageMount(std::string_view path) {
    const size_t mount = path.find("/.mount_");
    if (mount == path.npos) return {};
    const size_t end = path.find('/', mount + 1);
    return end == path.npos ? std::string_view() : path.substr(0, end);
}

bool isAppImage(std::string_view path) { return endsWithIgnoringCase(path, appImageSuffix); }

std::optional<std::string> appImageOf(const SystemRoot& root, int64_t pid) {
    const auto text = readTable(processFile(root, pid, "environ"));
    if (!text) return {};
    const auto path = parseEnvironment(*text, "APPIMAGE");
    return path.starts_with('/') ? std::optional<std::string>(path) : std::nullopt;
}

std::string_view parseEnvironment(std::string_view text, std::string_view variable) {
    while (!text.empty()) {
        std::string_view value = scutil::takeUntil(text, '\0');
        if (scutil::takeUntil(value, '=') == variable) return value;
    }
    return {};
}

std::string appImageName(std::string_view path) {
    std::string_view name = path.substr(path.rfind('/') + 1);
    if (isAppImage(name) && name.size() > appImageSuffix.size()) name.remove_suffix(appImageSuffix.size());
    // The first part that starts with a digit is the version, or an architecture follows.
    constexpr std::array<std::string_view, 6> architectures{"x86_64", "aarch64", "amd64",
                                                            "arm64",  "armhf",   "i686"};
    for (size_t cut = name.find_first_of("-_", 1); cut != name.npos;
         cut = name.find_first_of("-_", cut + 1)) {
        std::string_view part = name.substr(cut + 1);
        if (part.starts_with('v')) part.remove_prefix(1);
        const bool isVersion = !part.empty() && scutil::isDigit(part.front());
        const bool isArchitecture =
            std::any_of(architectures.begin(), architectures.end(),
                        [&](std::string_view each) { return name.substr(cut + 1).starts_with(each); });
        if (isVersion || isArchitecture) return std::string(name.substr(0, cut));
    }
    return std::string(name);
}

} // namespace sysinfo::platform
