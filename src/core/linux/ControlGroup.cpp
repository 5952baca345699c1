#include "core/linux/ControlGroup.h"

#include "core/Scan.h"
#include "core/linux/ContainerName.h"

#include <algorithm>
#include <optional>

namespace sysinfo::platform {

namespace {

using Kind = GroupOwner::Kind;

std::vector<std::string_view> split(std::string_view text, char delimiter) {
    std::vector<std::string_view> parts;
    while (!text.empty())
        if (const auto part = scutil::takeUntil(text, delimiter); !part.empty()) parts.push_back(part);
    return parts;
}

std::string joinParts(const std::vector<std::string_view>& parts, size_t first, size_t last) {
    std::string text;
    for (size_t i = first; i < last; ++i) {
        if (i > first) text += '-';
        text += unescapeUnit(parts[i]);
    }
    return text;
}

bool removeSuffix(std::string_view& text, std::string_view suffix) {
    if (!text.ends_with(suffix)) return false;
    text.remove_suffix(suffix.size());
    return true;
}

void addId(std::vector<std::string>& ids, std::string id) {
    if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(std::move(id));
}

/// The ids that "app[-launcher]-ID" can mean, already split at the dashes. An id's own dashes ought to be
/// escaped, which not every launcher does.
std::vector<std::string> applicationIds(const std::vector<std::string_view>& parts, size_t count) {
    std::vector<std::string> ids{joinParts(parts, 0, count)};
    if (count > 1) addId(ids, joinParts(parts, 1, count)); // the first part is the launcher
    return ids;
}

/// app[-launcher]-ID-RANDOM.scope, app[-launcher]-ID[@RANDOM].service
bool takeApplication(std::string_view unit, GroupOwner& owner) {
    if (!unit.starts_with("app-")) return false;
    unit.remove_prefix(4);
    const bool isScope = removeSuffix(unit, ".scope");
    if (!isScope && !removeSuffix(unit, ".service")) return false;
    if (!isScope) unit = unit.substr(0, unit.find('@'));
    const auto parts = split(unit, '-');
    const size_t count = isScope && parts.size() > 1 ? parts.size() - 1 : parts.size();
    if (count == 0) return false;
    owner.ids = applicationIds(parts, count);
    // Some launchers put the random part of a service behind a dash, too.
    if (!isScope && count > 1) addId(owner.ids, joinParts(parts, count > 2 ? 1 : 0, count - 1));
    owner.kind = Kind::application;
    owner.unit = "app-" + owner.ids[count == 2 ? 1 : 0] + (isScope ? ".scope" : ".service");
    return true;
}

/// dbus-:1.2-NAME@N.service, made by the message bus for a name that somebody called.
bool takeBusName(std::string_view unit, GroupOwner& owner) {
    if (!unit.starts_with("dbus-:")) return false;
    scutil::takeUntil(unit, '-');
    scutil::takeUntil(unit, '-');
    unit = unit.substr(0, unit.rfind('@'));
    if (unit.empty()) return false;
    owner.ids = {unescapeUnit(unit)};
    owner.kind = Kind::application;
    owner.unit = "dbus-" + owner.ids.front() + ".service";
    return true;
}

/// snap.NAME.APP-RANDOM.scope, snap.NAME.APP.RANDOM.scope, snap.NAME.APP.service
bool takeSnap(std::string_view unit, GroupOwner& owner) {
    if (!unit.starts_with("snap.")) return false;
    unit.remove_prefix(5);
    std::string_view name = scutil::takeUntil(unit, '.');
    const std::string_view application = unit.substr(0, unit.find_first_of(".-"));
    if (name.empty()) return false;
    owner.kind = Kind::snap;
    owner.unit = "snap." + std::string(name);
    owner.ids = {std::string(name) + '_' + std::string(application), std::string(name)};
    return true;
}

/// Whether the manager made the name up, for a command that somebody gave it: run-u12.service,
/// run-rd5f….scope, run-p12-i34.scope.
bool isTransient(std::string_view unit) {
    if (!unit.starts_with("run-") || unit.size() < 6) return false;
    constexpr std::string_view kinds = "rup";
    return kinds.find(unit[4]) != kinds.npos && scutil::toNumber<unsigned>(unit.substr(5, 1), 16);
}

/// Groups whose processes a person started, or that serve many: they say nothing of one application.
bool isShared(std::string_view unit) {
    const bool isScope = unit.ends_with(".scope");
    return unit == "init.scope" || unit.starts_with("user@") || isTransient(unit) ||
           (isScope && (unit.starts_with("session-") || unit.starts_with("tab(") ||
                        unit.find("-spawn-") != unit.npos || unit.find("-conmon-") != unit.npos));
}

bool takeService(std::string_view unit, GroupOwner& owner) {
    if (unit.starts_with("openrc.")) {
        owner.kind = Kind::service;
        owner.unit = unit;
        return true;
    }
    const bool isService = unit.ends_with(".service");
    if (!isService && !unit.ends_with(".scope")) return false;
    owner.kind = Kind::service;
    owner.unit = unit;
    if (const size_t at = unit.find('@'); isService && at != unit.npos) {
        owner.instance = unit;
        owner.unit = std::string(unit.substr(0, at)) + "@.service";
    }
    return true;
}

enum class Answer { found, none, further };

Answer classify(std::string_view unit, GroupOwner& owner) {
    if (unit.ends_with(".slice") || unit == "main.scope") return Answer::further;
    if (isShared(unit)) return Answer::none;
    const bool found = takeApplication(unit, owner) || takeBusName(unit, owner) || takeSnap(unit, owner) ||
                       takeService(unit, owner);
    return found ? Answer::found : Answer::further;
}

/// A service in a user's session may stand in a slice named after its application.
void addIdsOfSlices(const std::vector<std::string_view>& components, GroupOwner& owner) {
    if (owner.kind == Kind::service) {
        std::string_view base = owner.unit;
        if (removeSuffix(base, ".service")) addId(owner.ids, unescapeUnit(base.substr(0, base.find('@'))));
    }
    for (auto slice = components.rbegin(); slice != components.rend(); ++slice) {
        std::string_view name = *slice;
        if (!name.starts_with("app-") || !removeSuffix(name, ".slice")) continue;
        const auto parts = split(name.substr(4), '-');
        for (auto& id : applicationIds(parts, parts.size())) addId(owner.ids, std::move(id));
    }
}

/// Up to the service manager that a unit belongs to: none for that of the system.
std::string managerOf(const std::vector<std::string_view>& components) {
    std::string path;
    for (const auto component : components) {
        path.append("/").append(component);
        if (component.starts_with("user@") && component.ends_with(".service")) return path;
    }
    return {};
}

std::optional<GroupOwner> containerAt(const std::vector<std::string_view>& components) {
    std::string parent;
    std::string_view former;
    for (const auto component : components) {
        if (const auto container = parseContainerName(component, former)) {
            GroupOwner owner;
            owner.kind = Kind::container;
            owner.unit = container->unit;
            owner.path = parent + '/' + owner.unit;
            return owner;
        }
        parent.append("/").append(component);
        former = component;
    }
    return {};
}

} // namespace

std::string_view parseControlGroup(std::string_view text) {
    std::string_view unified, ofManager;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const std::string_view number = scutil::takeUntil(line, ':');
        const std::string_view controllers = scutil::takeUntil(line, ':');
        if (!line.starts_with('/')) continue;
        if (number == "0" && controllers.empty()) unified = line;
        if (controllers == "name=systemd") ofManager = line;
    }
    return unified.size() > 1 || ofManager.empty() ? unified : ofManager;
}

GroupOwner ownerOfGroup(std::string_view path) {
    const auto components = split(path, '/');
    // The outermost container counts: what runs inside it has groups of its own.
    if (auto container = containerAt(components)) return *container;
    GroupOwner owner;
    Answer answer = Answer::further;
    for (auto unit = components.rbegin(); unit != components.rend() && answer == Answer::further; ++unit)
        answer = classify(*unit, owner);
    const std::string manager = managerOf(components);
    owner.ofUser = !manager.empty();
    if (owner.kind == Kind::none) return owner;
    if (owner.ofUser && owner.kind != Kind::snap) addIdsOfSlices(components, owner);
    owner.path = (owner.kind == Kind::snap ? std::string() : manager) + '/' + owner.unit;
    return owner;
}

std::string unescapeUnit(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        if (text.starts_with("\\x") && text.size() >= 4) {
            if (const auto code = scutil::toNumber<unsigned char>(text.substr(2, 2), 16)) {
                plain += static_cast<char>(*code);
                text.remove_prefix(4);
                continue;
            }
        }
        plain += text.front();
        text.remove_prefix(1);
    }
    return plain;
}

std::string nameOfGroup(std::string_view path) {
    std::string_view unit = path.substr(path.rfind('/') + 1);
    const bool isMachine = unit.starts_with("machine-"); // its number was taken off already
    if (const auto container = parseContainerName(unit, {}); container && !isMachine) return container->name;
    if (!removeSuffix(unit, ".service")) removeSuffix(unit, ".scope");
    for (const std::string_view prefix : {"app-", "dbus-", "snap.", "openrc.", "machine-"})
        if (unit.starts_with(prefix) && unit.size() > prefix.size()) {
            unit.remove_prefix(prefix.size());
            break;
        }
    return unescapeUnit(unit.substr(0, unit.find('@')));
}

} // namespace sysinfo::platform
