#include "core/linux/MountTable.h"

#include "core/Scan.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

template <size_t size>
bool isOneOf(std::string_view text, const std::array<std::string_view, size>& table) {
    return std::find(table.begin(), table.end(), text) != table.end();
}

template <size_t size>
bool beginsWithOneOf(std::string_view text, const std::array<std::string_view, size>& table) {
    return std::any_of(table.begin(), table.end(),
                       [&](std::string_view prefix) { return text.starts_with(prefix); });
}

/// Undoes "\040" and its like, which stand for blanks, tabs, line feeds and backslashes.
std::string unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const auto code = text.front() == '\\' && text.size() >= 4
                              ? scutil::toNumber<uint8_t>(text.substr(1, 3), 8)
                              : std::nullopt;
        plain += code ? static_cast<char>(*code) : text.front();
        text.remove_prefix(code ? 4 : 1);
    }
    return plain;
}

constexpr std::array<std::string_view, 13> networkTypes{"nfs",    "nfs4", "cifs",  "smb3", "smbfs",
                                                        "ncpfs",  "afs",  "ceph",  "coda", "glusterfs",
                                                        "lustre", "gpfs", "beegfs"};

/// Clients of a server that name no server in their source.
constexpr std::array<std::string_view, 9> networkClients{"fuse.sshfs",   "fuse.rclone", "fuse.s3fs",
                                                         "fuse.gcsfuse", "fuse.goofys", "fuse.glusterfs",
                                                         "fuse.juicefs", "fuse.mfs",    "fuse.ceph-fuse"};

/// File systems with storage of their own although no block device is mounted.
constexpr std::array<std::string_view, 8> storageTypes{"btrfs",  "zfs",    "bcachefs", "ubifs",
                                                       "vboxsf", "prl_fs", "virtiofs", "9p"};

/// Views of files that are listed elsewhere, or of no files at all.
constexpr std::array<std::string_view, 9> viewTypes{
    "fuse.gvfsd-fuse", "fuse.gvfs-fuse-daemon", "fuse.portal",        "fuse.lxcfs",         "fuse.snapfuse",
    "fuse.squashfuse", "fuse.squashfuse_ll",    "fuse.revokefs-fuse", "fuse.fuse-overlayfs"};

/// Images of applications and of read-only systems: full by nature.
constexpr std::array<std::string_view, 3> imageTypes{"squashfs", "erofs", "cramfs"};

constexpr std::array<std::string_view, 13> systemPlaces{"/proc/",
                                                        "/sys/",
                                                        "/dev/",
                                                        "/etc/",
                                                        "/run/",
                                                        "/snap/",
                                                        "/var/snap/",
                                                        "/var/lib/snapd/",
                                                        "/var/lib/docker/",
                                                        "/var/lib/containers/",
                                                        "/var/lib/kubelet/",
                                                        "/var/lib/lxd/",
                                                        "/tmp/.mount_"};

bool isUserSpace(const Mount& mount) {
    return mount.type == "fuse" || mount.type == "fuseblk" || mount.type.starts_with("fuse.");
}

bool hasStorage(const Mount& mount) {
    if (isOneOf(mount.type, viewTypes) || isOneOf(mount.type, imageTypes)) return false;
    const bool blockDevice = !mount.device.starts_with("0:");
    return blockDevice || isOneOf(mount.type, storageTypes) || isOneOf(mount.type, networkTypes) ||
           isUserSpace(mount);
}

bool isSystemPlace(std::string_view point) {
    return beginsWithOneOf(point, systemPlaces) && !point.starts_with("/run/media/");
}

bool isBrowsable(const Mount& mount) {
    if (mount.type == "rootfs" || mount.type == "autofs" || mount.type == "devtmpfs") return false;
    if (mount.point == "/") return true;
    return hasStorage(mount) && !isSystemPlace(mount.point) && !mount.point.ends_with("//deleted") &&
           !mount.root.ends_with("//deleted");
}

bool liesBelow(std::string_view path, std::string_view folder) {
    if (folder == "/") return path.size() > 1;
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

bool descendsFrom(const Mount& mount, uint32_t ancestor, const std::vector<Mount>& table) {
    uint32_t id = mount.parent;
    for (size_t steps = 0; steps <= table.size(); ++steps) { // a table that lies may hold a ring
        if (id == ancestor) return true;
        const auto parent =
            std::find_if(table.begin(), table.end(), [&](const Mount& other) { return other.id == id; });
        if (parent == table.end() || parent->parent == id) return false;
        id = parent->parent;
    }
    return false;
}

/// Whether a later mount lies over the mount point at `position`, or over a folder on the way to it.
bool isHidden(const std::vector<Mount>& table, size_t position) {
    const Mount& mount = table[position];
    return std::any_of(table.begin() + static_cast<std::ptrdiff_t>(position) + 1, table.end(),
                       [&](const Mount& later) {
                           const bool above = later.point == mount.point ||
                                              (later.point != "/" && liesBelow(mount.point, later.point));
                           return above && !descendsFrom(mount, later.id, table);
                       });
}

/// Which of two mounts of one file system stands for it: the whole before a folder of it, then the shorter
/// path.
bool isBetter(const Mount& a, const Mount& b) {
    const auto rank = [](const Mount& mount) { return mount.point == "/" ? 0 : mount.root == "/" ? 1 : 2; };
    if (rank(a) != rank(b)) return rank(a) < rank(b);
    return a.point.size() < b.point.size();
}

} // namespace

std::vector<Mount> parseMountInfo(std::string_view text) {
    std::vector<Mount> mounts;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const auto id = scutil::toNumber<uint32_t>(scutil::takeWord(line));
        const auto parent = scutil::toNumber<uint32_t>(scutil::takeWord(line));
        const auto device = scutil::takeWord(line);
        const auto root = scutil::takeWord(line);
        const auto point = scutil::takeWord(line);
        std::string_view field = scutil::takeWord(line); // options, then any number of optional fields
        while (!field.empty() && field != "-") field = scutil::takeWord(line);
        const auto type = scutil::takeWord(line);
        if (!id || !parent || !point.starts_with('/') || type.empty()) continue;
        mounts.push_back({*id, *parent, std::string(device), unescaped(root), unescaped(point),
                          unescaped(type), unescaped(scutil::takeWord(line))});
    }
    return mounts;
}

std::vector<Mount> browsableMounts(const std::vector<Mount>& table) {
    std::vector<Mount> chosen;
    for (size_t position = 0; position < table.size(); ++position) {
        const Mount& mount = table[position];
        if (!isBrowsable(mount) || isHidden(table, position)) continue;
        const auto same = std::find_if(chosen.begin(), chosen.end(),
                                       [&](const Mount& other) { return other.device == mount.device; });
        if (same == chosen.end())
            chosen.push_back(mount);
        else if (isBetter(mount, *same))
            *same = mount;
    }
    return chosen;
}

bool isRemote(const Mount& mount) {
    if (isOneOf(mount.type, networkTypes) || isOneOf(mount.type, networkClients)) return true;
    // "host:/folder", "//host/share", "https://host"; a path or a list of paths may hold a colon as well.
    const bool namesServer = mount.source.starts_with("//") ||
                             (mount.source.find(':') != std::string::npos && mount.source[0] != '/');
    const bool joinsFolders = mount.type == "fuse.mergerfs" || mount.type == "fuse.unionfs";
    return isUserSpace(mount) && !joinsFolders && namesServer;
}

bool canStall(const Mount& mount, const std::vector<Mount>& table) {
    const auto stallsItself = [](const Mount& other) {
        return isRemote(other) || isUserSpace(other) || other.type == "9p" || other.type == "virtiofs";
    };
    return stallsItself(mount) || std::any_of(table.begin(), table.end(), [&](const Mount& other) {
               return stallsItself(other) && liesBelow(mount.point, other.point);
           });
}

} // namespace sysinfo::platform
