// Whom a process belongs to on a desktop that follows freedesktop.org, under systemd or without it.
#include "core/AppOwnerIndex.h"

#include "core/linux/ControlGroup.h"
#include "core/linux/DesktopIndex.h"
#include "core/linux/Files.h"
#include "core/linux/ProcessFiles.h"
#include "core/linux/Sandbox.h"
#include "core/linux/UnitFiles.h"

#include <mutex>

namespace sysinfo {

using namespace platform;

namespace {

constexpr double lookEvery = 10; ///< seconds
constexpr size_t mostGroups = 4096;
constexpr std::string_view kernelKey = "kernel", kernelName = "Kernel";
constexpr std::string_view entrySuffix = ".desktop";
constexpr std::string_view flatpakPrefix = "/var/lib/flatpak/app/", snapPrefix = "/snap/";

std::string_view lastPart(std::string_view path) { return path.substr(path.rfind('/') + 1); }

/// Whether a service is a message bus, which starts programs for whoever asks, and `program` is none of its
/// own.
bool startsForOthers(std::string_view unit, std::string_view program) {
    const bool isBus =
        unit == "dbus.service" || unit == "dbus-broker.service" || unit == "at-spi-dbus-bus.service";
    return isBus && !program.starts_with("dbus") && !program.starts_with("at-spi");
}

/// "Nautilus" of "org.gnome.Nautilus".
std::string_view withoutDomain(std::string_view id) {
    const size_t dot = id.rfind('.');
    return dot == id.npos || id.find('.') == dot ? id : id.substr(dot + 1);
}

} // namespace

class AppOwnerIndex::Resolver {
public:
    Resolver(const SystemRoot& root, std::string locale)
        : root_(root), places_(desktopPlaces(root)), folders_(root, places_, std::move(locale)) {
        systemUnits_ = unitFolders(UnitManager::ofSystem, {});
        userUnits_ = unitFolders(UnitManager::ofUser, places_.homes.empty() ? "" : places_.homes.front());
    }

    std::optional<Text> bundleOf(const Process& process) {
        const std::lock_guard lock(mutex_);
        readOnce();
        const std::string key = keyOf(process);
        return key.empty() ? std::nullopt : std::optional(shared(key));
    }

    AppIdentity identity(std::string_view bundle) {
        const std::lock_guard lock(mutex_);
        readOnce();
        return describe(bundle);
    }

    AppOwner owner(std::string_view bundle) {
        const AppIdentity identity = this->identity(bundle);
        const bool isFile = bundle.starts_with('/');
        return {identity.path, identity.name, isFile && exists(root_.path(bundle.substr(1)))};
    }

    uint64_t revision(double now) {
        const std::lock_guard lock(mutex_);
        if (isRead_ && (now >= lookedAt_ + lookEvery || now < lookedAt_)) {
            lookedAt_ = now;
            const bool unitsChanged = unitStamps_.changed();
            if (folders_.changed()) isRead_ = false;
            if (unitsChanged || !isRead_) {
                groups_.clear();
                ++revision_;
            }
        }
        return revision_;
    }

private:
    /// A control group, looked into once.
    struct Group {
        GroupOwner owner;
        const InstalledEntry* entry = nullptr; ///< of an application, snap or user's service
        std::string unitFile;                  ///< of a service
    };

    void readOnce() {
        if (isRead_) return;
        isRead_ = true;
        groups_.clear();
        index_ = DesktopIndex(folders_.read());
        unitStamps_.clear();
        for (const auto* folders : {&systemUnits_, &userUnits_})
            for (const auto& folder : *folders) unitStamps_.add(root_.path(folder.substr(1)));
    }

    /// One text for each key, so that comparing two is comparing two addresses.
    Text shared(const std::string& key) {
        if (keys_.size() >= mostGroups) keys_.clear();
        const auto [place, isNew] = keys_.try_emplace(key);
        if (isNew) place->second = key;
        return place->second;
    }

    std::optional<ProcessStat> statOf(const Process& process) {
        text_ = readTable(processFile(root_, process.pid, "stat")).value_or("");
        return parseProcessStat(text_);
    }

    bool isKernelThread(const Process& process) {
        constexpr int threadDaemon = 2;
        if (!process.path.empty() || (process.pid != threadDaemon && process.ppid != threadDaemon))
            return false;
        constexpr uint32_t kernelThread = 0x00200000; // PF_KTHREAD
        const auto stat = statOf(process);
        return stat && (stat->flags & kernelThread) != 0;
    }

    const Group& groupOf(const Process& process) {
        const auto text = readTable(processFile(root_, process.pid, "cgroup"));
        const std::string path(text ? parseControlGroup(*text) : std::string_view());
        if (groups_.size() >= mostGroups) groups_.clear();
        const auto [place, isNew] = groups_.try_emplace(path);
        if (isNew) fill(place->second, path);
        return place->second;
    }

    void fill(Group& group, std::string_view path) {
        group.owner = ownerOfGroup(path);
        for (const auto& id : group.owner.ids)
            if (group.entry = index_.byId(id); group.entry) return;
        if (group.owner.kind == GroupOwner::Kind::snap) group.entry = index_.bySnap(group.owner.ids.back());
        if (group.owner.kind != GroupOwner::Kind::service) return;
        const auto& folders = group.owner.ofUser ? userUnits_ : systemUnits_;
        group.unitFile = findUnitFile(root_, folders, group.owner.instance);
        if (group.unitFile.empty()) group.unitFile = findUnitFile(root_, folders, group.owner.unit);
        if (group.owner.unit.starts_with("openrc."))
            group.unitFile = "/etc/init.d/" + nameOfGroup(group.owner.unit);
    }

    /// Whether a process in the group of a terminal is the terminal itself or a helper of it, and not what
    /// somebody started in it.
    bool isOfTerminal(const Process& process, const InstalledEntry& terminal) {
        const std::string_view file = executableName(process.name, process.path);
        const std::string_view program = terminal.entry.program();
        if (!program.empty() && file.starts_with(program)) return true;
        if (!program.empty() && !isLauncher(lastPart(process.path))) return false;
        const auto stat = statOf(process);
        return stat && stat->terminal == 0;
    }

    /// What the control group tells of the process; empty when nothing.
    std::string keyByGroup(const Process& process, const Group& group) {
        using Kind = GroupOwner::Kind;
        if (group.entry) {
            const bool isOwn = !group.entry->entry.isTerminal || isOfTerminal(process, *group.entry);
            return isOwn ? group.entry->path : std::string();
        }
        switch (group.owner.kind) {
        case Kind::snap: return std::string(snapPrefix) + group.owner.ids.back();
        case Kind::service:
            if (startsForOthers(group.owner.unit, executableName(process.name, process.path))) return {};
            return group.unitFile.empty() ? group.owner.path : group.unitFile;
        default: return {};
        }
    }

    std::string keyBySandbox(const Process& process) {
        if (const auto id = flatpakOf(root_, process.pid)) {
            const auto* entry = index_.byId(*id);
            return entry ? entry->path : std::string(flatpakPrefix) + *id;
        }
        if (const auto package = snapOfPath(process.path); !package.empty()) {
            const auto* entry = index_.bySnap(package);
            return entry ? entry->path : std::string(snapPrefix) + std::string(package);
        }
        return {};
    }

    std::string keyByExecutable(const Process& process) {
        std::string path(process.path);
        if (!appImageMount(path).empty()) path = appImageOf(root_, process.pid).value_or(path);
        if (const auto* entry = index_.byExecutable(path, process.name)) return entry->path;
        return isAppImage(path) ? path : std::string();
    }

    std::string keyOf(const Process& process) {
        if (isKernelThread(process)) return std::string(kernelKey);
        const Group& group = groupOf(process);
        if (group.owner.kind == GroupOwner::Kind::container) return group.owner.path;
        if (auto bundle = bundlePath(process.path)) return std::move(*bundle);
        if (auto key = keyByGroup(process, group); !key.empty()) return key;
        if (auto key = keyBySandbox(process); !key.empty()) return key;
        if (auto key = keyByExecutable(process); !key.empty()) return key;
        const bool unknownApplication = group.owner.kind == GroupOwner::Kind::application && !group.entry;
        return unknownApplication ? group.owner.path : std::string();
    }

    AppIdentity describe(std::string_view key) {
        if (const auto* entry = index_.byPath(key); entry && !entry->entry.name.empty())
            return {key, entry->entry.name, entry->id};
        if (key == kernelKey) return {key, kernelName, {}};
        std::string_view file = lastPart(key);
        if (file.ends_with(entrySuffix)) {
            file.remove_suffix(entrySuffix.size());
            return {key, withoutDomain(file), file};
        }
        if (isAppImage(key)) return {key, appImageName(key), file};
        if (bundlePath(key) == key) return {key, file.substr(0, file.size() - 4), file};
        if (key.starts_with(flatpakPrefix)) return {key, withoutDomain(file), file};
        if (key.starts_with(snapPrefix)) return {key, file, file};
        const std::string name = nameOfGroup(key);
        const bool isId = file.starts_with("app-") || file.starts_with("dbus-");
        return {key, isId ? withoutDomain(name) : name, file};
    }

    const SystemRoot root_;
    const DesktopPlaces places_;
    std::vector<std::string> systemUnits_, userUnits_;
    std::mutex mutex_; ///< guards what follows
    bool isRead_ = false;
    uint64_t revision_ = 1;
    double lookedAt_ = 0;
    DesktopFolders folders_;
    FolderStamps unitStamps_;
    DesktopIndex index_;
    std::unordered_map<std::string, Group> groups_; ///< by the path of the control group
    std::unordered_map<std::string, Text> keys_;
    std::string text_; ///< reused
};

AppOwnerIndex::AppOwnerIndex(const SystemRoot& root, std::string locale)
    : resolver_(std::make_unique<Resolver>(root, std::move(locale))) {}
AppOwnerIndex::~AppOwnerIndex() = default;

std::optional<Text> AppOwnerIndex::bundleOf(const Process& process) { return resolver_->bundleOf(process); }
AppIdentity AppOwnerIndex::identity(std::string_view bundle) { return resolver_->identity(bundle); }
AppOwner AppOwnerIndex::owner(std::string_view bundle) { return resolver_->owner(bundle); }
uint64_t AppOwnerIndex::revision(double now) { return resolver_->revision(now); }

} // namespace sysinfo
