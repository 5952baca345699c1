#pragma once

#include "core/DesktopEntry.h"
#include "core/SystemRoot.h"
#include "core/linux/FolderStamps.h"
#include "core/linux/Programs.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sysinfo::platform {

/// Where entries of the desktop's menus lie on a machine, and programs and units of its user. Paths are as
/// that machine sees them.
struct DesktopPlaces {
    std::vector<std::string> menus;     ///< folders of entries, the first one first
    std::vector<std::string> autostart; ///< entries of what starts with the session
    std::vector<std::string> programs;  ///< folders of programs besides the usual ones
    std::vector<std::string> homes;
};
/// Of this machine by the environment of this program; of a captured one with every home that it holds.
DesktopPlaces desktopPlaces(const SystemRoot& root);

/// One entry of the menus.
struct InstalledEntry {
    std::string id;   ///< "org.gnome.Nautilus"
    std::string path; ///< of the entry, as that machine sees it
    DesktopEntry entry;
    Program program;
    std::vector<std::string> folders; ///< where only its own programs lie
};

/// Reads the entries of all menus, and again only those that changed.
class DesktopFolders {
public:
    DesktopFolders(SystemRoot root, DesktopPlaces places, std::string locale);

    /// Every entry of an application, each id once: an entry hides later ones of the same id, also when it
    /// only says that the application is removed. Menus come first, then what starts with the session, which
    /// counts as unlisted.
    std::vector<InstalledEntry> read();

    /// Whether a folder changed since `read`: one question to the kernel for each folder.
    bool changed() { return stamps_.changed(); }

private:
    struct File {
        FileStamp stamp;
        InstalledEntry entry;
    };
    void readFolder(const std::string& folder, const std::string& idPrefix, int depth, bool isMenu);
    void readEntry(const std::string& path, std::string id, bool isMenu);
    void findProgramOf(InstalledEntry& installed) const;

    SystemRoot root_;
    DesktopPlaces places_;
    std::string locale_;
    FolderStamps stamps_;
    std::unordered_map<std::string, File> files_;  ///< by path
    std::unordered_map<std::string, File> former_; ///< of the reading before
    std::vector<const InstalledEntry*> inOrder_;   ///< first of each id
    std::unordered_set<std::string_view> ids_;     ///< points into files_
};

} // namespace sysinfo::platform
