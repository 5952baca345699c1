#include "monitor/ResourceAppGrouper.h"

#include "monitor/Processes.h"
#include "support/Joined.h"
#include "support/TempRoot.h"

namespace quarn::testing {
namespace {

ProcInfo process(int64_t pid, std::string_view path, double cpu = 0, uint64_t memory = 0) {
    ProcInfo info = processOf(pid, path.substr(path.rfind('/') + 1), cpu);
    info.path = path;
    info.memBytes = memory;
    return info;
}

/// "Editor(3: 7,5) other(2)": the applications with the number of their processes and those that are listed.
std::string summary(const ResourceAppList& list) {
    std::string text;
    const auto add = [&](const ResourceAppList::App& app) {
        text.append(text.empty() ? "" : " ").append(app.name.view());
        text += '(' + std::to_string(app.processCount) + ":";
        for (const auto& each : app.processes) text += ' ' + std::to_string(each.pid);
        text += ')';
    };
    for (const auto& app : list.apps) add(app);
    if (list.other) add(*list.other);
    return text;
}

ResourceAppList make(ResourceKind kind, const std::vector<ProcInfo>& processes, size_t apps, size_t each,
                     const NetworkRates& network = {}) {
    std::vector<std::string> bundles;
    for (const auto& one : processes)
        bundles.push_back(sysinfo::AppOwnerIndex::bundlePath(one.path).value_or(""));
    return ResourceAppList::make(
        kind, processes, network, apps, each,
        [&](const ProcInfo& one) -> std::string_view {
            return bundles[static_cast<size_t>(&one - processes.data())];
        },
        [](std::string_view bundle) { return Text(bundle.substr(bundle.rfind('/') + 1)); });
}

TEST(ResourceAppList, AddsUpTheProcessesOfABundle) {
    std::vector<ProcInfo> processes{process(1, "/A/Editor.app/bin/editor", 5, 10),
                                    process(2, "/A/Editor.app/Frameworks/Helper.app/helper", 20, 20),
                                    process(3, "/usr/bin/make", 24, 40), process(4, "/usr/bin/make", 0, 2),
                                    process(5, "/opt/make", 0, 0)};
    processes[0].watts = 1.5;
    processes[1].diskReadRate = 100;
    processes[1].ioKnown = true;
    processes[3].accessible = processes[4].accessible = false;
    const auto list = make(ResourceKind::cpu, processes, 10, 1, {{2, {30, 4}}});
    EXPECT_EQ(summary(list), "Editor.app(2: 2) make(3: 3)");
    EXPECT_FALSE(list.other);
    const auto& editor = list.apps[0];
    EXPECT_EQ(*editor.bundle, "/A/Editor.app");
    const auto& used = editor.usage;
    EXPECT_EQ(joined(used.cpuPercent, used.memBytes, used.diskRead, used.network.download, used.watts),
              "25|30|100|30|1.5");
    EXPECT_TRUE(editor.usage.known.measured && editor.usage.known.disk && editor.usage.known.network);
    const auto& make = list.apps[1];
    EXPECT_FALSE(make.bundle || make.usage.watts);
    EXPECT_TRUE(make.usage.known.measured); // one of them tells
    EXPECT_FALSE(make.usage.known.disk || make.usage.known.network);
}

TEST(ResourceAppList, RanksByEachKind) {
    std::vector<ProcInfo> processes{process(1, "/cpu", 9),  process(2, "/memory", 0, 9), process(3, "/disk"),
                                    process(4, "/network"), process(5, "/energy"),       process(6, "/idle")};
    processes[2].diskReadRate = 1;
    processes[2].diskWriteRate = 1;
    processes[4].watts = 0.1;
    processes[5].watts = 0.0;
    const NetworkRates network{{4, {0, 3}}, {1, {1, 1}}};
    const struct {
        ResourceKind kind;
        const char* order;
    } cases[]{
        // Equal applications are in the order of their memory, then of their names.
        {ResourceKind::cpu, "cpu(1: 1) memory(1: 2) disk(1: 3) energy(1: 5) idle(1: 6) network(1: 4)"},
        {ResourceKind::memory, "memory(1: 2) cpu(1: 1) disk(1: 3) energy(1: 5) idle(1: 6) network(1: 4)"},
        {ResourceKind::disk, "disk(1: 3) memory(1: 2) cpu(1: 1) energy(1: 5) idle(1: 6) network(1: 4)"},
        {ResourceKind::network, "network(1: 4) cpu(1: 1) memory(1: 2) disk(1: 3) energy(1: 5) idle(1: 6)"},
        {ResourceKind::energy, "energy(1: 5) memory(1: 2) cpu(1: 1) disk(1: 3) idle(1: 6) network(1: 4)"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(summary(make(each.kind, processes, 10, 10, network)), each.order);
}

TEST(ResourceAppList, ListsTenAndSumsUpTheRest) {
    TempRoot nothing;
    ResourceAppGrouper grouper(std::make_shared<AppOwnerIndex>(nothing.root()), [] { return 0.0; });
    std::vector<ProcInfo> processes;
    for (int64_t pid = 1; pid <= 12; ++pid)
        processes.push_back(process(pid, "/A/" + std::string(1, static_cast<char>('a' + pid)) + ".app/x",
                                    static_cast<double>(pid), 1));
    for (int64_t pid = 13; pid <= 24; ++pid) processes.push_back(process(pid, "/A/big.app/x", 50, 1));
    const auto list = grouper.list(ResourceKind::cpu, processes, {});
    ASSERT_EQ(list.apps.size(), 10U);
    EXPECT_EQ(list.apps[0].processCount, 12);
    EXPECT_EQ(list.apps[0].processes.size(), 10U);
    EXPECT_EQ(list.apps[0].processes.front().pid, 13); // equal processes by pid
    ASSERT_TRUE(list.other);
    EXPECT_EQ(summary({ResourceKind::cpu, {}, list.other}), "Other processes(3: 3 2 1)");
    EXPECT_DOUBLE_EQ(list.other->usage.cpuPercent, 6);
    EXPECT_FALSE(list.other->bundle);
    EXPECT_TRUE(grouper.list(ResourceKind::disk, {}, {}).apps.empty());
}

TEST(AppNameCache, AsksOnceAndStaysSmall) {
    int asked = 0;
    AppNameCache names([&](std::string_view bundle) {
        ++asked;
        return Text(bundle);
    });
    for (int i = 0; i < 64; ++i) names.nameOf(std::to_string(i));
    names.trim();
    EXPECT_EQ(names.nameOf("3"), "3");
    EXPECT_EQ(asked, 64);
    names.nameOf("one more");
    names.trim();
    EXPECT_EQ(names.size(), 0U);
}

} // namespace
} // namespace quarn::testing
