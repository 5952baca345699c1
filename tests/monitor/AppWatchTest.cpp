#include "monitor/AppWatch.h"

#include "monitor/Processes.h"
#include "support/ManualQueue.h"
#include "support/TempRoot.h"

namespace quarn::testing {
namespace {

/// Process lists of a machine with an editor of two processes and a shell.
class Watched {
public:
    void list(uint64_t editorNs, bool withShell = true) {
        Snapshot snapshot;
        snapshot.processGeneration = ++generation_;
        snapshot.timestamp += std::chrono::seconds(generation_);
        std::vector<ProcInfo> processes{process(1, "/opt/Editor.app/bin/edit", editorNs),
                                        process(2, "/opt/Editor.app/bin/help", 5),
                                        process(3, "/bin/shell", 7)};
        if (!withShell) processes.pop_back();
        snapshot.processes = std::move(processes);
        watch->take(snapshot);
        watch->take(snapshot); // a list that is known already
    }
    void run() {
        queue.run();
        main.run();
    }

    TempRoot root;
    ManualQueue queue, main;
    std::optional<AppWatch> watch{std::in_place, queue, main, std::make_shared<AppOwnerIndex>(root.root())};

private:
    static ProcInfo process(int64_t pid, const char* path, uint64_t cpuNs) {
        ProcInfo info = processOf(pid, path);
        info.path = path;
        info.cpuTimeNs = cpuNs;
        info.memBytes = 10;
        return info;
    }
    int64_t generation_ = 0;
};

TEST(AppWatch, TellsWhatApplicationsDidAndLeavesOutListsThatNobodyHadTimeFor) {
    Watched watched;
    std::string told;
    watched.watch->observeActivity([&](WallTime at, std::span<const AppActivity> apps) {
        told += std::to_string(at.time_since_epoch() / std::chrono::seconds(1)) + ":";
        for (const auto& app : apps)
            told.append(" ").append(app.app).append(" ").append(std::to_string(app.growth.cpuNs));
        told += "\n";
    });
    watched.list(100);
    EXPECT_EQ(told, ""); // nothing is done on the thread that took it
    watched.run();
    watched.list(110);
    watched.list(125, false);
    watched.run();
    EXPECT_EQ(told, "1: /opt/Editor.app 0 shell 0\n"
                    "3: /opt/Editor.app 25\n");
    EXPECT_EQ(watched.watch->latest(), nullptr); // nobody wanted the list
}

TEST(AppWatch, MakesTheListOnlyForThoseWhoWantIt) {
    Watched watched;
    int changes = 0;
    watched.watch->observeList([&] { ++changes; });
    watched.list(100);
    watched.run();
    {
        const AppListRetention one(*watched.watch), other(*watched.watch);
        watched.run(); // without waiting for the next process list
        ASSERT_NE(watched.watch->latest(), nullptr);
        EXPECT_EQ(watched.watch->latest()->apps.size(), 2U);
        EXPECT_EQ(watched.watch->latest()->apps[0].processes.size(), 2U);
        watched.list(101);
        watched.run();
    }
    watched.list(102);
    watched.run();
    EXPECT_EQ(changes, 2);

    const AppListRetention last(*watched.watch);
    watched.queue.run();
    watched.watch.reset(); // with a list on its way
    watched.main.run();
    EXPECT_EQ(changes, 2);
}

} // namespace
} // namespace quarn::testing
