#include "history/LiveRecord.h"
#include "history/LiveSupport.h"
#include "support/ManualQueue.h"
#include "support/TempRoot.h"

#include <sys/stat.h>

namespace quarn::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

struct LiveRecordTest : ::testing::Test {
    LiveRecordTest() { start(); }

    /// A program that begins to record, the former one still running.
    std::unique_ptr<LiveRecord> program() {
        auto made = std::make_unique<LiveRecord>(LiveRecordSetup{
            .queue = queue,
            .file = file,
            .breaks = [this] { return breaks; },
            .nameOf = [](const std::string& app) { return "Name of " + app; },
            .now = [this] { return now; },
        });
        made->begin();
        queue.run();
        return made;
    }
    void start() { live = program(); }
    void tick(LiveRecord& record, std::chrono::seconds seconds = 1s) {
        now += seconds;
        Snapshot snapshot;
        snapshot.timestamp = now;
        snapshot.generation = ++generation;
        snapshot.cpu.perCore = {1};
        snapshot.cpu.total = static_cast<double>(generation);
        record.add(snapshot, {});
        record.addApps(now,
                       std::vector<AppActivity>{{"/apps/editor", 10, {1'000'000'000, 0, 0, 0, 0, false}}});
    }
    size_t saved() const {
        const auto content = readArchive(file);
        return content ? content->samples.size() : 0;
    }

    TempRoot folder;
    fs::path file = folder.path() / "Quarn" / "live-history.plist";
    ManualQueue queue;
    WallTime now = wallTime(liveNow);
    int64_t generation = 0;
    std::vector<HistoryBreak> breaks;
    std::unique_ptr<LiveRecord> live;
};

TEST_F(LiveRecordTest, ChartsDoNotBeginEmpty) {
    breaks = {{liveNow - 50, liveNow - 40}, {liveNow - 4000, liveNow - 3000}};
    for (int i = 0; i < 3; ++i) tick(*live);
    live.reset();
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    breaks.clear();
    now += 60s;
    start();
    tick(*live);
    const auto samples = live->samples();
    ASSERT_EQ(samples.size(), 4u);
    EXPECT_TRUE(samples[2]->restored && !samples[3]->restored);
    EXPECT_EQ(samples[2]->cpuTotal, 3);
    EXPECT_EQ(live->breaks(),
              (std::vector<HistoryBreak>{{liveNow - 50, liveNow - 40}, {liveNow + 3, liveNow + 63}}));
    const auto apps = live->topApps(AppHistoryMetric::cpu, 5);
    ASSERT_EQ(apps.size(), 1u);
    EXPECT_EQ(apps[0].metrics.cpuSeconds, 2);
    EXPECT_EQ(apps[0].metrics.name, "Name of /apps/editor");

    live.reset();
    now += 7200s;
    start();
    EXPECT_TRUE(live->samples().empty());
    live.reset();
    EXPECT_EQ(saved(), 4u); // nothing to keep is no reason to forget
}

TEST_F(LiveRecordTest, SavesNowAndThenSoThatACrashLosesLittle) {
    tick(*live);
    queue.advance(299s);
    EXPECT_EQ(saved(), 0u);
    queue.advance(20s);
    EXPECT_EQ(saved(), 1u);
}

TEST_F(LiveRecordTest, OneProgramSavesAndTheNextTakesOver) {
    tick(*live);
    live->save();
    auto other = program();
    EXPECT_EQ(other->samples().size(), 1u);
    tick(*other);
    other->save();
    EXPECT_EQ(saved(), 1u);
    live.reset();
    other->save();
    EXPECT_EQ(saved(), 2u);
}

TEST_F(LiveRecordTest, ABrokenArchiveIsKeptAside) {
    live.reset();
    folder.write("Quarn/live-history.plist", "bplist00 what is this");
    start();
    tick(*live);
    live.reset();
    EXPECT_EQ(saved(), 1u);
    EXPECT_EQ(readFile(file.string() + ".broken-1"), "bplist00 what is this");
    EXPECT_NE(readFile(file.string() + ".broken-1.txt"), "");

    auto holder = program();
    tick(*holder);
    holder->save();
    folder.write("Quarn/live-history.plist", "broken by somebody");
    start(); // it is for the other program to set right
    EXPECT_EQ(readFile(file), "broken by somebody");
    EXPECT_THROW(readArchive(file), std::runtime_error);
}

TEST_F(LiveRecordTest, WithoutAPlaceToSaveItStillRecords) {
    file = "/dev/null/Quarn/live-history.plist";
    start();
    tick(*live);
    EXPECT_EQ(live->samples().size(), 1u);
    live->recorder().startRecording(folder.path() / "r.csv");
    tick(*live);
    queue.run();
    EXPECT_EQ(live->recorder().state().written, 1u);
    live->writeCSV(folder.path() / "h.csv");
    EXPECT_TRUE(readFile(folder.path() / "h.csv")
                    .ends_with(readFile(folder.path() / "r.csv").substr(HistoryExport::header.size() + 1)));
}

} // namespace
} // namespace quarn::testing
