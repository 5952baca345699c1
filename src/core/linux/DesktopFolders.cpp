#include "core/linux/DesktopFolders.h"

#include "core/CleanText.h"
#include "core/Scan.h"
#include "core/linux/Files.h"

#include <algorithm>
#include <cstdlib>

namespace sysinfo::platform {

namespace {

constexpr int deepestFolder = 4;
constexpr uint64_t largestEntry = 256 * 1024;

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value == '/' ? value : ""; // relative paths are to be ignored
}

void addOnce(std::vector<std::string>& folders, std::string folder) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end())
        folders.push_back(std::move(folder));
}

/// What a user has installed for himself.
void addHome(DesktopPlaces& places, const std::string& home, std::string data, std::string config) {
    if (data.empty()) data = home + "/.local/share";
    if (config.empty()) config = home + "/.config";
    places.homes.push_back(home);
    addOnce(places.menus, data + "/applications");
    addOnce(places.menus, data + "/flatpak/exports/share/applications");
    addOnce(places.autostart, config + "/autostart");
    addOnce(places.programs, home + "/.local/bin");
    addOnce(places.programs, home + "/bin");
}

} // namespace

DesktopPlaces desktopPlaces(const SystemRoot& root) {
    DesktopPlaces places;
    std::string dataFolders = "/usr/local/share:/usr/share";
    if (root.isHost()) {
        if (const auto home = variable("HOME"); !home.empty())
            addHome(places, home, variable("XDG_DATA_HOME"), variable("XDG_CONFIG_HOME"));
        if (const auto given = variable("XDG_DATA_DIRS"); !given.empty()) dataFolders = given;
    } else {
        for (const auto& user : listFolder(root.path("home"))) addHome(places, "/home/" + user, {}, {});
    }
    for (std::string_view rest = dataFolders; !rest.empty();)
        if (const auto folder = scutil::takeUntil(rest, ':'); folder.starts_with('/'))
            addOnce(places.menus, std::string(folder) + "/applications");
    // Known even where this program was started without a session's environment.
    addOnce(places.menus, "/var/lib/flatpak/exports/share/applications");
    addOnce(places.menus, "/var/lib/snapd/desktop/applications");
    addOnce(places.autostart, "/etc/xdg/autostart");
    return places;
}

DesktopFolders::DesktopFolders(SystemRoot root, DesktopPlaces places, std::string locale)
    : root_(std::move(root)), places_(std::move(places)), locale_(std::move(locale)) {}

std::vector<InstalledEntry> DesktopFolders::read() {
    stamps_.clear();
    inOrder_.clear();
    ids_.clear();
    former_ = std::exchange(files_, {});
    for (const auto& folder : places_.menus) readFolder(folder, "", deepestFolder, true);
    for (const auto& folder : places_.autostart) readFolder(folder, "", 1, false);
    former_.clear();
    std::vector<InstalledEntry> entries;
    for (const auto* entry : inOrder_)
        if (entry->entry.isApplication && !entry->entry.removed) entries.push_back(*entry);
    return entries;
}

void DesktopFolders::readFolder(const std::string& folder, const std::string& idPrefix, int depth,
                                bool isMenu) {
    const std::string place = root_.path(std::string_view(folder).substr(1));
    stamps_.add(place); // before it is listed, so that no change falls between the two
    constexpr std::string_view suffix = ".desktop";
    for (const auto& name : listFolder(place)) {
        const std::string path = folder + '/' + name;
        if (name.ends_with(suffix))
            readEntry(path, idPrefix + name.substr(0, name.size() - suffix.size()), isMenu);
        else if (depth > 1 && name.find('.') == name.npos && stampOf(place + '/' + name).isFolder)
            readFolder(path, idPrefix + name + '-', depth - 1, isMenu);
    }
}

void DesktopFolders::readEntry(const std::string& path, std::string id, bool isMenu) {
    const std::string place = root_.path(std::string_view(path).substr(1));
    const FileStamp stamp = stampOf(place);
    if (stamp.size == 0 || stamp.size > largestEntry || stamp.isFolder) return;
    auto& file = files_[path];
    if (const auto known = former_.find(path); known != former_.end() && known->second.stamp == stamp) {
        file = std::move(known->second);
    } else {
        const auto text = readTable(place);
        if (!text) return;
        file.stamp = stamp;
        file.entry.entry = parseDesktopEntry(*text, locale_);
        file.entry.entry.name = scutil::cleanText(file.entry.entry.name);
        if (!isMenu) file.entry.entry.unlisted = true;
    }
    file.entry.id = std::move(id);
    file.entry.path = path;
    findProgramOf(file.entry);
    if (ids_.insert(file.entry.id).second) inOrder_.push_back(&file.entry);
}

void DesktopFolders::findProgramOf(InstalledEntry& installed) const {
    installed.program = findProgram(root_, installed.entry.command, places_.programs);
    installed.folders.clear();
    if (installed.entry.unlisted) return;
    installed.folders = namedFolders(root_, installed.entry.program());
    if (const auto own = installFolder(installed.program.path); !own.empty())
        installed.folders.emplace_back(own);
}

} // namespace sysinfo::platform
