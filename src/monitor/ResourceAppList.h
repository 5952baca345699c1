#pragma once

#include "monitor/ResourceUsage.h"

#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace quarn {

/// The applications that use most of one resource, with their processes.
struct ResourceAppList {
    struct Process {
        int64_t pid = 0;
        Text name;
        Text path;
        bool accessible = false;
        ResourceUsage usage;
    };
    struct App {
        std::optional<Text> bundle; ///< absent for processes that belong to no application
        Text name;                  ///< for people
        ResourceUsage usage;        ///< of all its processes
        int64_t processCount = 0;   ///< all of them, also those not listed
        std::vector<Process> processes;
    };

    ResourceKind kind = ResourceKind::cpu;
    std::vector<App> apps;
    std::optional<App>
        other; ///< the applications beyond the limit, "Other processes"; absent when all are listed

    /// The bundle path of a process; empty when it belongs to no application. Must stay valid during `make`.
    using BundleOf = std::function<std::string_view(const ProcInfo&)>;
    /// The display name of a bundle.
    using NameOf = std::function<Text(std::string_view bundle)>;

    /// Processes of one bundle are one application; those without one are grouped by executableName(). The
    /// first `appLimit` applications are listed, each with its first `processLimit` processes, those that use
    /// most first. Equal applications are in the order of their memory and then of their names, equal
    /// processes in that of their pids.
    static ResourceAppList make(ResourceKind kind, std::span<const ProcInfo> processes,
                                const NetworkRates& network, size_t appLimit, size_t processLimit,
                                const BundleOf& bundleOf, const NameOf& nameOf);
};

} // namespace quarn
