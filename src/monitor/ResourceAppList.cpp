#include "monitor/ResourceAppList.h"

#include "core/AppOwnerIndex.h"
#include "monitor/TextNumbers.h"

#include <algorithm>
#include <numeric>

namespace quarn {

namespace {

/// One application while it is added up.
struct Group {
    std::string_view key; ///< bundle path or executable name
    bool isBundle = false;
    ResourceUsage usage;
    int64_t processCount = 0;
    std::optional<Text> name; ///< once it was asked for
};

/// Adds up applications and remembers where each process went.
class Groups {
public:
    Groups(ResourceKind kind, std::span<const ProcInfo> processes, const NetworkRates& network,
           const ResourceAppList::BundleOf& bundleOf, const ResourceAppList::NameOf& nameOf)
        : kind_(kind), processes_(processes), network_(network), nameOf_(nameOf) {
        groupOf_.reserve(processes.size());
        used_.reserve(processes.size());
        for (const auto& process : processes) {
            const size_t index = groupFor(process, bundleOf(process));
            groupOf_.push_back(static_cast<uint32_t>(index));
            const ResourceUsage usage = usageOf(process, network);
            used_.push_back(measure(usage, kind));
            groups_[index].usage += usage;
            ++groups_[index].processCount;
        }
    }

    /// The first `limit` groups.
    std::vector<uint32_t> ranked(size_t limit) {
        std::vector<uint32_t> order(groups_.size());
        std::iota(order.begin(), order.end(), 0U);
        limit = std::min(limit, order.size());
        std::partial_sort(order.begin(), order.begin() + static_cast<ptrdiff_t>(limit), order.end(),
                          [&](uint32_t a, uint32_t b) { return comesBefore(groups_[a], groups_[b]); });
        order.resize(limit);
        return order;
    }

    ResourceAppList::App app(uint32_t index) {
        const Group& group = groups_[index];
        ResourceAppList::App app;
        if (group.isBundle) app.bundle = group.key;
        app.name = nameOf(groups_[index]);
        app.usage = group.usage;
        app.processCount = group.processCount;
        return app;
    }

    /// Everything but the groups of `listed`.
    std::optional<ResourceAppList::App> rest(const std::vector<uint32_t>& listed) const {
        if (listed.size() >= groups_.size()) return {};
        std::vector<bool> isListed(groups_.size());
        for (const uint32_t index : listed) isListed[index] = true;
        ResourceAppList::App other;
        other.name = "Other processes";
        for (size_t index = 0; index < groups_.size(); ++index) {
            if (isListed[index]) continue;
            other.usage += groups_[index].usage;
            other.processCount += groups_[index].processCount;
        }
        return other;
    }

    /// Gives the listed applications, and what is left over, their processes.
    void fillProcesses(ResourceAppList& list, const std::vector<uint32_t>& listed, size_t limit) const {
        const size_t left = listed.size();
        std::vector<size_t> bucketOf(groups_.size(), left);
        for (size_t i = 0; i < left; ++i) bucketOf[listed[i]] = i;
        std::vector<std::vector<uint32_t>> buckets(left + 1);
        for (uint32_t i = 0; i < processes_.size(); ++i) buckets[bucketOf[groupOf_[i]]].push_back(i);
        for (size_t i = 0; i < left; ++i) fill(list.apps[i], buckets[i], limit);
        if (list.other) fill(*list.other, buckets[left], limit);
    }

private:
    /// The first `limit` of some processes, which are told by their places in the list.
    void fill(ResourceAppList::App& app, std::vector<uint32_t>& places, size_t limit) const {
        const auto end = places.begin() + static_cast<ptrdiff_t>(std::min(limit, places.size()));
        std::partial_sort(places.begin(), end, places.end(), [&](uint32_t a, uint32_t b) {
            return used_[a] != used_[b] ? used_[a] > used_[b] : processes_[a].pid < processes_[b].pid;
        });
        for (auto place = places.begin(); place != end; ++place) {
            const ProcInfo& process = processes_[*place];
            app.processes.push_back(
                {process.pid, process.name, process.path, process.accessible, usageOf(process, network_)});
        }
    }

    /// A bundle and an executable of the same name are two applications.
    struct Keys {
        TextNumbers numbers;
        std::vector<size_t> groups; ///< by number
    };

    size_t groupFor(const ProcInfo& process, std::string_view bundle) {
        const bool isBundle = !bundle.empty();
        const auto key = isBundle ? bundle : sysinfo::executableName(process.name, process.path);
        Keys& keys = isBundle ? bundles_ : names_;
        const size_t number = keys.numbers.number(key);
        if (number == keys.groups.size()) {
            keys.groups.push_back(groups_.size());
            groups_.push_back({key, isBundle, {}, 0, {}});
        }
        return keys.groups[number];
    }

    const Text& nameOf(Group& group) {
        if (!group.name) group.name = group.isBundle ? nameOf_(group.key) : Text(group.key);
        return *group.name;
    }

    bool comesBefore(Group& a, Group& b) {
        const double usedByA = measure(a.usage, kind_), usedByB = measure(b.usage, kind_);
        if (usedByA != usedByB) return usedByA > usedByB;
        if (a.usage.memBytes != b.usage.memBytes) return a.usage.memBytes > b.usage.memBytes;
        const Text &nameOfA = nameOf(a), &nameOfB = nameOf(b);
        return nameOfA != nameOfB ? nameOfA.view() < nameOfB.view() : a.key < b.key;
    }

    ResourceKind kind_;
    std::span<const ProcInfo> processes_;
    const NetworkRates& network_;
    const ResourceAppList::NameOf& nameOf_;
    std::vector<Group> groups_;
    std::vector<uint32_t> groupOf_; ///< of each process
    std::vector<double> used_;      ///< by each process
    Keys bundles_;
    Keys names_;
};

} // namespace

ResourceAppList ResourceAppList::make(ResourceKind kind, std::span<const ProcInfo> processes,
                                      const NetworkRates& network, size_t appLimit, size_t processLimit,
                                      const BundleOf& bundleOf, const NameOf& nameOf) {
    Groups groups(kind, processes, network, bundleOf, nameOf);
    ResourceAppList list;
    list.kind = kind;
    const auto listed = groups.ranked(appLimit);
    for (const uint32_t index : listed) list.apps.push_back(groups.app(index));
    list.other = groups.rest(listed);
    groups.fillProcesses(list, listed, processLimit);
    return list;
}

} // namespace quarn
