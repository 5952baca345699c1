#include "core/linux/ContainerName.h"

#include "core/Scan.h"
#include "core/linux/ControlGroup.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr size_t shortId = 12; ///< characters that the engines' own lists show
constexpr std::string_view scope = ".scope";

bool isContainerId(std::string_view text) {
    return text.size() == 64 && std::all_of(text.begin(), text.end(), [](char c) {
               return scutil::isDigit(c) || (c >= 'a' && c <= 'f');
           });
}

/// What people call the engine that names its groups so.
std::string_view engineName(std::string_view prefix) {
    if (prefix.starts_with("libpod")) return "podman";
    if (prefix.starts_with("docker")) return "docker";
    if (prefix.starts_with("crio")) return "cri-o";
    if (prefix.find("containerd") != prefix.npos) return "containerd";
    if (prefix.starts_with("kubepods") || prefix.starts_with("pod")) return "kubernetes";
    return "container";
}

std::optional<ContainerName> byId(std::string_view component, std::string_view parent) {
    std::string_view prefix = component;
    if (prefix.ends_with(scope)) prefix.remove_suffix(scope.size());
    const size_t cut = prefix.find_last_of("-:"); // "docker-ID.scope", "system.slice:docker:ID"
    const std::string_view id = cut == prefix.npos ? prefix : prefix.substr(cut + 1);
    if (!isContainerId(id)) return {};
    prefix = cut == prefix.npos ? parent : prefix.substr(0, cut);
    if (prefix.ends_with("-conmon")) return {}; // watches over a container from outside
    prefix = prefix.substr(prefix.rfind(':') == prefix.npos ? 0 : prefix.rfind(':') + 1);
    return ContainerName{std::string(component),
                         std::string(engineName(prefix)) + ' ' + std::string(id.substr(0, shortId))};
}

/// machine-NAME.scope; virtual machines are numbered at each start: machine-qemu\x2d3\x2dNAME.scope
std::optional<ContainerName> byMachine(std::string_view component) {
    constexpr std::string_view prefix = "machine-";
    if (!component.starts_with(prefix) || !component.ends_with(scope)) return {};
    component.remove_prefix(prefix.size());
    component.remove_suffix(scope.size());
    std::string name = unescapeUnit(component);
    std::string_view rest = name;
    const std::string_view driver = scutil::takeUntil(rest, '-');
    if (const auto number = scutil::takeUntil(rest, '-');
        !driver.empty() && !rest.empty() && scutil::toNumber<unsigned>(number))
        name = rest;
    if (name.empty()) return {};
    return ContainerName{std::string(prefix) + name + std::string(scope), name};
}

} // namespace

std::optional<ContainerName> parseContainerName(std::string_view component, std::string_view parent) {
    if (auto container = byId(component, parent)) return container;
    if (auto machine = byMachine(component)) return machine;
    const auto named = [&](std::string_view name) {
        return ContainerName{std::string(component), unescapeUnit(name)};
    };
    constexpr std::string_view payload = "lxc.payload.", nspawn = "systemd-nspawn@", service = ".service";
    if (component.starts_with(payload) && component.size() > payload.size())
        return named(component.substr(payload.size()));
    if (parent == "lxc") return named(component);
    if (component.starts_with(nspawn) && component.ends_with(service))
        return named(component.substr(nspawn.size(), component.size() - nspawn.size() - service.size()));
    return {};
}

} // namespace sysinfo::platform
