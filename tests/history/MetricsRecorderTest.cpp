#include "history/MetricsRecorder.h"

#include "HelperKit/SerialQueue.h"
#include "history/Support.h"
#include "support/Contains.h"
#include "support/FaultVfs.h"
#include "support/ManualQueue.h"
#include "ui/settings/Prefs.h"

#include <fstream>

namespace quarn::testing {
namespace {

using namespace std::chrono_literals;
using State = HistoryStatus::State;

/// One program: its clock, its queue and its recorder. CPU at 50 %, one application.
class Program {
public:
    explicit Program(const HistoryFolder& folder) : file_(folder.file()) {}

    /// With the first tick.
    void begin() {
        recorder.emplace(
            MetricsRecorderSetup{.queue = queue,
                                 .prefs = prefs,
                                 .file = file_,
                                 .nameOf = [](const std::string& app) { return "Name of " + app; },
                                 .sleepNotices = MetricsRecorderSetup::SleepNotices::none,
                                 .now = [this] { return clock; },
                                 .steadySeconds = [this] { return queue.seconds(); }});
        recorder->start(prefs.saveMetricsHistory.get());
        queue.run();
        tick();
    }
    void tick() {
        Snapshot snapshot;
        snapshot.timestamp = clock;
        snapshot.cpu.total = 50;
        snapshot.mem.total = snapshot.mem.used = 1000;
        recorder->record(snapshot);
        recorder->addApps(clock, std::vector<AppActivity>{{"/editor", 100, {}}});
    }
    /// `count` ticks, a second apart.
    void run(int count) {
        for (int i = 0; i < count; ++i) {
            clock += 1s;
            queue.advance(1s);
            tick();
        }
    }
    void save(bool wanted) {
        prefs.saveMetricsHistory.set(wanted);
        queue.run();
    }
    /// Why the history is not cleared.
    std::optional<std::string> refusalToClear() {
        std::optional<std::string> refusal;
        recorder->clear([&](auto problem) { refusal = problem; });
        queue.run();
        return refusal;
    }
    State stateNow() const { return recorder->status().state; }
    std::string problem() const { return recorder->status().problem; }
    /// Seconds of the machine in the last hour, as a page sees it.
    std::optional<double> hourOfHistory() {
        std::optional<double> seconds;
        recorder->systemSeries(TopAppsRange::hour, [&](MetricsRead<SystemSeriesRead> read) {
            state = read.state;
            if (!read.values) return;
            seconds = 0;
            for (const auto& point : read.values->points) *seconds += point.metrics.seconds;
        });
        queue.run();
        return seconds;
    }

    TempRoot home;
    SettingsStore settings{home.path() / "settings.toml", 0ns};
    Prefs prefs{settings};
    ManualQueue queue;
    WallTime clock = wallTime(fullHour);
    std::optional<MetricsRecorder> recorder;
    MetricsRead<SystemSeriesRead>::State state{}; ///< of the last question

private:
    std::filesystem::path file_;
};

struct MetricsRecorderTest : ::testing::Test {
    HistoryFolder folder;
    Program program{folder};
};

TEST_F(MetricsRecorderTest, WritesOnceAMinuteAndAtTheEnd) {
    program.begin();
    EXPECT_FALSE(std::filesystem::exists(folder.file())); // nothing to write yet
    program.run(60);
    EXPECT_EQ(program.hourOfHistory(), 59); // the sixtieth second came with the write
    EXPECT_EQ(program.recorder->status(), (HistoryStatus{State::recording, ""}));
    program.run(30);
    EXPECT_EQ(program.hourOfHistory(), 59);
    program.recorder->flush(MetricsRecorder::Wait::yes);
    EXPECT_EQ(program.hourOfHistory(), 90);
    EXPECT_EQ(folder.number("SELECT seconds FROM app_1h WHERE name = 'Name of /editor'"), 90);

    std::optional<TopAppsRead> top;
    program.recorder->topApps(TopAppsRange::day, AppHistoryMetric::memory, 5, [&](auto read) { top = read; });
    std::optional<std::vector<AppPoint>> series;
    program.recorder->appSeries("/editor", TopAppsRange::week, [&](auto read) { series = read; });
    std::optional<RecentSystemTotals> totals;
    program.recorder->recentTotals([&](auto read) { totals = read; });
    program.queue.run();
    ASSERT_TRUE(top && series && totals);
    EXPECT_EQ(top->apps.at(0).bundlePath, "/editor");
    EXPECT_EQ(top->period, 86'400 + 90);
    EXPECT_EQ(series->at(0).start, fullHour);
    EXPECT_EQ(totals->lastMonth.cpuSeconds, 45);

    program.run(5);
    program.recorder.reset();
    EXPECT_EQ(folder.number("SELECT SUM(seconds) FROM system_1m"), 95);
}

TEST_F(MetricsRecorderTest, FollowsThePreference) {
    program.prefs.saveMetricsHistory.set(false);
    program.begin();
    program.run(70);
    EXPECT_FALSE(program.hourOfHistory());
    EXPECT_EQ(program.state, MetricsRead<SystemSeriesRead>::State::off);
    EXPECT_FALSE(std::filesystem::exists(folder.file()));

    program.save(true);
    program.run(70);
    EXPECT_EQ(program.hourOfHistory(), 58);
    program.save(false);
    EXPECT_EQ(program.stateNow(), State::off);
    EXPECT_EQ(program.queue.timerCount(), 0u);
}

TEST_F(MetricsRecorderTest, OneRecordsWhileOthersReadAndOneOfThemTakesOver) {
    Program &first = program, second(folder);
    for (Program* each : {&first, &second}) each->begin();
    for (Program* each : {&first, &second}) each->run(61);
    EXPECT_EQ(second.stateNow(), State::otherRecorder);
    EXPECT_EQ(second.hourOfHistory(), first.hourOfHistory());
    EXPECT_EQ(folder.number("SELECT SUM(seconds) FROM system_1m"), 59);
    EXPECT_TRUE(second.refusalToClear());

    first.run(9);
    first.recorder.reset(); // 70 seconds are written
    second.run(59);
    EXPECT_EQ(second.stateNow(), State::recording);
    EXPECT_EQ(second.hourOfHistory(), 70); // what it gathered while the other recorded is dropped
    second.run(60);
    EXPECT_EQ(second.hourOfHistory(), 130);
}

TEST_F(MetricsRecorderTest, SleepIsNotObserved) {
    program.begin();
    program.run(10);
    program.recorder->willSleep();
    program.clock += 20s;
    program.queue.advance(20s);
    program.recorder->didWake();
    program.tick();
    program.run(10);
    program.recorder->flush(MetricsRecorder::Wait::yes);
    EXPECT_EQ(program.hourOfHistory(), 20);
}

TEST_F(MetricsRecorderTest, ABrokenDatabaseIsSetAsideAndANewOneBegun) {
    for (const bool whileOpen : {false, true}) {
        HistoryFolder broken;
        std::string garbage(40'000, 'x');
        if (whileOpen) { // a sound beginning, and rubbish behind it
            { MetricsStore store(broken.file()); }
            garbage = readFile(broken.file()).substr(0, 4096) + garbage;
        }
        broken.write("metrics.sqlite", garbage);
        Program user(broken);
        user.begin();
        user.run(61);
        EXPECT_EQ(user.stateNow(), State::recording);
        EXPECT_TRUE(contains(user.problem(), "set aside as"));
        EXPECT_EQ(user.hourOfHistory(), 59) << "nothing of this run may be lost";
        const auto aside = broken.file().string() + ".broken-1";
        // All but the first page, in which SQLite counts how often it was opened.
        EXPECT_TRUE(readFile(aside).substr(4096, 30'000) == garbage.substr(4096, 30'000));
        EXPECT_FALSE(readFile(aside + ".txt").empty());
    }
}

TEST_F(MetricsRecorderTest, TablesOfAnotherProgramAreSetAsideButANewerVersionIsLeftAlone) {
    SQLiteConnection(folder.file().string()).execute("CREATE TABLE system_1m (x); PRAGMA user_version = 4");
    program.begin();
    program.run(61);
    EXPECT_EQ(program.hourOfHistory(), 59);
    program.recorder.reset();
    SQLiteConnection(folder.file().string()).execute("PRAGMA user_version = 5");
    Program later(folder);
    later.begin();
    later.run(125);
    EXPECT_EQ(
        later.recorder->status(),
        (HistoryStatus{State::failed, "metrics history schema 5 is newer than this version of the app (4)"}));
    EXPECT_FALSE(later.hourOfHistory());
    EXPECT_EQ(later.state, MetricsRead<SystemSeriesRead>::State::failed);
    EXPECT_FALSE(std::filesystem::exists(folder.file().string() + ".broken-2"));
}

TEST_F(MetricsRecorderTest, LivesWhereItCannotWriteAndTriesAgainWhenAsked) {
    std::filesystem::remove(folder.path());
    std::ofstream(folder.path()) << "a file in the place of the folder";
    program.begin();
    program.run(130);
    EXPECT_EQ(program.stateNow(), State::failed);
    EXPECT_FALSE(program.hourOfHistory());
    EXPECT_TRUE(program.refusalToClear());

    std::filesystem::remove(folder.path());
    for (const bool on : {false, true}) program.save(on);
    program.tick();
    program.run(61);
    EXPECT_EQ(program.stateNow(), State::recording);
}

TEST_F(MetricsRecorderTest, AFullDiskAndALockedDatabaseCostOnlyTheirMinutes) {
    FaultVfs vfs;
    std::optional<SQLiteConnection> other;
    const struct {
        const char* problem;
        std::function<void()> begin, end;
    } troubles[]{
        {"full", [&] { vfs.failAfter(0, FaultVfs::Fault::diskFull); }, [&] { vfs.heal(); }},
        {"locked", [&] { other.emplace(folder.file().string()).execute("BEGIN IMMEDIATE"); },
         [&] { other.reset(); }},
    };
    program.begin();
    program.run(60);
    double recorded = 59;
    for (const auto& trouble : troubles) {
        trouble.begin();
        program.run(60);
        EXPECT_EQ(program.stateNow(), State::recording);
        EXPECT_TRUE(contains(program.problem(), trouble.problem));
        EXPECT_EQ(program.hourOfHistory(), recorded) << "reading goes on";
        trouble.end();
        program.run(60);
        EXPECT_EQ(program.problem(), "");
        EXPECT_EQ(program.hourOfHistory(), recorded += 60);
    }
    program.recorder.reset();
    EXPECT_TRUE(folder.isSound());
}

TEST_F(MetricsRecorderTest, AClockSetYearsAheadForAWhileCostsNothing) {
    program.begin();
    program.run(120);
    const auto before = program.clock;
    program.clock += 24h * 3650;
    program.run(2 * 3600 + 61);
    program.clock = before + 2h;
    program.run(3600);
    program.recorder->flush(MetricsRecorder::Wait::yes);
    EXPECT_EQ(program.hourOfHistory(), 3600 - 1);
    EXPECT_EQ(folder.number("SELECT SUM(seconds) FROM system_1m WHERE start < 1790003040"), 120);
}

TEST(ClockTrust, DoubtsALeapForADay) {
    struct Step {
        int64_t date;
        double steady;
        bool believed;
    };
    const std::vector<std::pair<std::optional<int64_t>, std::vector<Step>>> runs{
        {std::nullopt, {{100 * day, 0, true}, {200 * day, day, false}}},
        {100 * day, {{106 * day, 5, true}, {112 * day, 5 + 5 * day, true}}},
        {100 * day,
         {{108 * day, 5, false},
          {109 * day, day, false},
          {109 * day, day + 5, true},
          {109 * day, day + 6, true}}},
        {100 * day, {{150 * day, 5, false}, {101 * day, 10, true}, {150 * day, day + 20, false}}},
        {100 * day, {{0, 5, true}, {101 * day, 60, true}}},               // the network tells the time
        {100 * day, {{101 * day, 0, true}, {121 * day, 20 * day, true}}}, // a long sleep
    };
    for (const auto& [newest, steps] : runs) {
        ClockTrust clock(newest);
        for (const auto& step : steps)
            EXPECT_EQ(clock.believes(step.date, step.steady), step.believed)
                << step.date / day << " at " << step.steady;
    }
}

TEST_F(MetricsRecorderTest, WorksAcrossThreads) {
    SerialQueue queue("com.kelmora.quarn.metrics");
    MetricsRecorder recorder(
        {.queue = queue, .prefs = program.prefs, .file = folder.file(), .nameOf = [](const std::string& app) {
             return app;
         }});
    recorder.start(true);
    queue.sync([] {});
    Snapshot snapshot;
    snapshot.timestamp = std::chrono::system_clock::now();
    for (int i = 0; i < 100; ++i) {
        snapshot.timestamp += 1s;
        recorder.record(snapshot);
        recorder.addApps(snapshot.timestamp, std::vector<AppActivity>{{"/editor", 1, {}}});
        if (i % 10 == 0) recorder.flush(MetricsRecorder::Wait::no);
        if (i % 30 == 0) recorder.didWake();
        (void)recorder.status();
    }
    recorder.flush(MetricsRecorder::Wait::yes);
    EXPECT_EQ(folder.number("SELECT SUM(seconds) FROM system_1m"), 99 - 4); // four times woken
}

} // namespace
} // namespace quarn::testing
