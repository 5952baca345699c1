#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sysinfo::platform {

/// A container or virtual machine, as the name of its control group tells.
struct ContainerName {
    std::string unit; ///< the group's name without what differs from one start to the next
    std::string name; ///< for people: "docker 3f2a91c04b1e", "debian"
};
/// `component` is one part of a group's path, `parent` the part before it. nullopt when it is no container's.
/// Understands docker, podman, containerd and CRI-O under either way of naming groups, LXC and its kin,
/// systemd-nspawn, and machines registered with systemd.
std::optional<ContainerName> parseContainerName(std::string_view component, std::string_view parent);

} // namespace sysinfo::platform
