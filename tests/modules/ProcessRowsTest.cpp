#include "ui/modules/ProcessRows.h"

#include "monitor/Processes.h"

#include <cmath>
#include <random>
#include <set>

namespace quarn {
namespace {

using Life = ProcessRow::Life;
using Shape = ProcessView::Shape;
using Direction = ProcessView::Direction;
using Pids = std::vector<int64_t>;

ProcInfo process(int64_t pid, std::string_view name, double cpu = 0, int64_t ppid = 0) {
    ProcInfo info = testing::processOf(pid, name, cpu);
    info.ppid = ppid;
    info.user = "ada";
    info.uid = 1000;
    info.startTimeMicros = 1'000'000 * static_cast<uint64_t>(pid);
    info.startTime = static_cast<uint64_t>(pid);
    return info;
}

/// The lists of one machine, second by second.
class Machine {
public:
    void tick(std::vector<ProcInfo> processes, double seconds = 1) {
        latest_.processes = std::move(processes);
        ++latest_.processGeneration;
        takeAgain(seconds);
    }
    void takeAgain(double seconds) { rows.take(latest_, Known(), marks, now_ += seconds); }
    Pids pids(const ProcessView& view = {}) {
        Pids pids;
        for (const ProcessRow& row : rows.rows(view)) pids.push_back(row.process->pid);
        return pids;
    }
    ProcessRow row(int64_t pid) {
        for (const ProcessRow& each : rows.rows({}))
            if (each.process->pid == pid) return each;
        ADD_FAILURE() << "no row of " << pid;
        return {};
    }

    ProcessRows rows;
    ProcessRows::Marks marks{.keepExited = 8};

private:
    double now_ = 100;
    Snapshot latest_;
};

TEST(ProcessRows, OrderByEveryField) {
    auto a = process(1, "beta", 5), b = process(2, "Alpha", 5), c = process(3, "gamma", 90);
    b.memBytes = 100;
    a.memBytes = 300;
    c.accessible = false; // its CPU share and memory are not known
    b.path = "/usr/bin/alpha";
    a.ioKnown = b.ioKnown = true;
    a.diskReadRate = 1;
    Machine machine;
    machine.tick({a, b, c});
    const struct {
        ProcessField field;
        Pids ascending, descending;
    } cases[]{
        {ProcessField::name, {2, 1, 3}, {3, 1, 2}},   {ProcessField::pid, {1, 2, 3}, {3, 2, 1}},
        {ProcessField::user, {1, 2, 3}, {1, 2, 3}}, // ties stand by pid either way
        {ProcessField::cpu, {1, 2, 3}, {1, 2, 3}},  // and what is unknown comes last
        {ProcessField::memory, {2, 1, 3}, {1, 2, 3}}, {ProcessField::diskRead, {2, 1, 3}, {1, 2, 3}},
        {ProcessField::path, {2, 1, 3}, {2, 1, 3}},   {ProcessField::started, {1, 2, 3}, {3, 2, 1}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(static_cast<int>(each.field));
        EXPECT_EQ(machine.pids({.sortedBy = each.field, .direction = Direction::ascending}), each.ascending);
        EXPECT_EQ(machine.pids({.sortedBy = each.field, .direction = Direction::descending}),
                  each.descending);
    }
}

TEST(ProcessRows, LongNamesWithOneBeginningAreStillInOrder) {
    Machine machine;
    machine.tick({process(1, "systemd-resolved"), process(2, "systemd-journald"), process(3, "SYSTEMD")});
    EXPECT_EQ(machine.pids({.sortedBy = ProcessField::name, .direction = Direction::ascending}),
              Pids({3, 2, 1}));
    EXPECT_EQ(machine.pids({.sortedBy = ProcessField::name}), Pids({1, 2, 3}));
}

TEST(ProcessRows, SearchFindsNamePathUserAndPid) {
    auto editor = process(12, "code"), shell = process(121, "Bash");
    editor.path = "/opt/Editor/code";
    shell.user = "root";
    shell.uid = 0;
    Machine machine;
    machine.tick({editor, shell});
    const struct {
        const char* search;
        Pids found;
    } cases[]{{"BASH", {121}},      {"editor", {12}},  {"root", {121}},   {"12", {12}},
              {"root bash", {121}}, {"root code", {}}, {"  ", {12, 121}}, {"nobody", {}}};
    for (const auto& each : cases)
        EXPECT_EQ(machine.pids({.search = each.search}), each.found) << each.search;
    EXPECT_EQ(machine.pids({.user = 0}), Pids({121}));
    EXPECT_EQ(machine.rows.matching(), 1u);
}

TEST(ProcessRows, TreeKeepsAncestorsOfWhatIsFound) {
    Machine machine;
    machine.tick({process(1, "init"), process(2, "shell", 0, 1), process(3, "editor", 0, 2),
                  process(4, "other", 0, 1), process(9, "lost", 0, 777)});
    const ProcessView tree{
        .sortedBy = ProcessField::pid, .direction = Direction::ascending, .shape = Shape::tree};
    EXPECT_EQ(machine.pids(tree), Pids({1, 2, 3, 4, 9}));
    auto searched = tree;
    searched.search = "editor";
    const auto rows = machine.rows.rows(searched);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_FALSE(rows[1].isMatch);
    EXPECT_TRUE(rows[2].isMatch);
    EXPECT_EQ(rows[2].parent, 1);
    EXPECT_EQ(machine.rows.matching(), 1u);
}

TEST(ProcessRows, TreeSortsSiblingsAndLosesNobody) {
    // Rings of parents, parents of themselves and a chain that is deeper than any real one.
    std::vector<ProcInfo> list{process(1, "a", 0, 2), process(2, "b", 0, 1), process(3, "c", 0, 3)};
    for (int64_t pid = 10; pid < 3000; ++pid)
        list.push_back(process(pid, "chain", 0, pid == 10 ? 0 : pid - 1));
    list.push_back(process(5000, "busy", 50, 10));
    Machine machine;
    machine.tick(list);
    const auto rows = machine.rows.rows({.shape = Shape::tree});
    ASSERT_EQ(rows.size(), list.size());
    std::set<int64_t> seen;
    std::vector<int> level(rows.size(), 0);
    int deepest = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        seen.insert(rows[i].process->pid);
        ASSERT_LT(rows[i].parent, static_cast<int>(i)) << "a parent comes before its child";
        if (rows[i].parent >= 0) level[i] = level[static_cast<size_t>(rows[i].parent)] + 1;
        deepest = std::max(deepest, level[i]);
    }
    EXPECT_EQ(seen.size(), list.size());
    EXPECT_LE(deepest, 100) << "views draw trees by recursion";
    EXPECT_EQ(rows[2].process->pid, 5000) << "the busiest child first";
}

TEST(ProcessRows, ExitedStayForAWhileAndFade) {
    Machine machine;
    machine.tick({process(1, "init"), process(2, "build", 80, 1)});
    machine.tick({process(1, "init")});
    EXPECT_EQ(machine.row(2).life, Life::exited);
    EXPECT_EQ(machine.row(2).process->cpuPercent, 80) << "where it was is where it is looked for";
    EXPECT_EQ(machine.row(2).fade, 1);
    EXPECT_EQ(machine.rows.matching(), 1u);
    machine.tick({process(1, "init")}, 6);
    EXPECT_EQ(machine.row(2).fade, 0.25f);
    machine.tick({process(1, "init")}, 2);
    EXPECT_EQ(machine.pids(), Pids({1}));

    machine.marks.keepExited = 0;
    machine.tick({});
    EXPECT_EQ(machine.pids(), Pids());
}

TEST(ProcessRows, APidGivenAnewIsAnotherProcess) {
    Machine machine;
    machine.tick({process(7, "old")});
    auto other = process(7, "new");
    other.startTimeMicros = 99;
    machine.tick({other});
    const auto rows = machine.rows.rows({.sortedBy = ProcessField::name, .direction = Direction::ascending});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].life, Life::fresh);
    EXPECT_EQ(rows[1].life, Life::exited);
    EXPECT_EQ(machine.rows.find(7)->name, "new");
}

TEST(ProcessRows, FreshOnesAreMarkedButNotTheFirstListNorAfterAPause) {
    Machine machine;
    machine.tick({process(1, "init")});
    EXPECT_EQ(machine.row(1).life, Life::running);
    machine.tick({process(1, "init"), process(2, "new")});
    EXPECT_EQ(machine.row(2).life, Life::fresh);
    EXPECT_EQ(machine.row(1).life, Life::running);
    machine.rows.pause();
    machine.tick({process(3, "later")}, 60);
    EXPECT_EQ(machine.pids(), Pids({3})) << "what ended while nobody looked is no news";
    EXPECT_EQ(machine.row(3).life, Life::running);
}

TEST(ProcessRows, MarksWhatChangedNotably) {
    Machine machine;
    auto before = process(1, "worker", 20);
    before.memBytes = 100 << 20;
    before.state = "Sleeping";
    machine.tick({before});
    auto after = before;
    after.cpuPercent = 24;
    after.memBytes += 1 << 20;
    machine.tick({after});
    EXPECT_EQ(machine.row(1).changed, 0) << "figures tremble";
    after.cpuPercent = 60;
    after.memBytes += 20 << 20;
    after.state = "Running";
    machine.tick({after});
    for (const auto field : {ProcessField::cpu, ProcessField::memory, ProcessField::state})
        EXPECT_TRUE(machine.row(1).hasChanged(field));
    EXPECT_FALSE(machine.row(1).hasChanged(ProcessField::threads));
    machine.tick({after});
    EXPECT_EQ(machine.row(1).changed, 0);
    machine.marks.changes = ProcessRows::Marks::Changes::ignore;
    machine.tick({before});
    EXPECT_EQ(machine.row(1).changed, 0);
}

TEST(ProcessRows, AListThatIsTakenAgainOnlyGrowsOlder) {
    Machine machine;
    machine.tick({process(1, "a")});
    machine.tick({process(1, "a"), process(2, "b")});
    machine.takeAgain(2);
    EXPECT_EQ(machine.pids().size(), 2u);
    EXPECT_EQ(machine.row(2).life, Life::fresh);
    EXPECT_EQ(machine.row(2).fade, 0.5f);
}

TEST(ProcessFields, WhatIsNotKnownIsADash) {
    auto hidden = process(1, "hidden", 50);
    hidden.accessible = false;
    hidden.startTimeMicros = hidden.startTime = std::nullopt;
    auto plain = process(2, "plain", 50);
    Known first;
    first.processRates = false;
    const WallTime now{};
    for (const auto field :
         {ProcessField::cpu, ProcessField::memory, ProcessField::diskRead, ProcessField::cpuTime,
          ProcessField::threads, ProcessField::switches, ProcessField::started, ProcessField::path}) {
        EXPECT_EQ(shownField(hidden, field, Known(), now), "—");
        EXPECT_TRUE(std::isnan(processNumber(hidden, field, Known())));
        EXPECT_FALSE(whyUnknown(hidden, field, Known()).empty());
    }
    EXPECT_EQ(shownField(plain, ProcessField::cpu, first, now), "—");
    EXPECT_EQ(shownField(plain, ProcessField::diskWritten, Known(), now), "—") << "0 would look real";
    EXPECT_EQ(shownField(plain, ProcessField::cpu, Known(), now), "50.0");
}

TEST(ProcessSentence, InPlainWords) {
    Snapshot snapshot;
    EXPECT_EQ(processSentence(snapshot, Known()), "No process can be read.");
    std::vector<ProcInfo> list(1234, process(1, "idle"));
    list[5] = process(5, "firefox", 40);
    snapshot.processes = list;
    snapshot.totalThreads = 1'204'311;
    EXPECT_EQ(processSentence(snapshot, Known()),
              "1,234 processes, 1,204,311 threads; firefox uses most CPU");
    snapshot.processes = {process(1, "init")};
    snapshot.totalThreads = 1;
    EXPECT_EQ(processSentence(snapshot, Known()), "1 process, 1 thread; all of them rest");
}

TEST(ShellWords, QuotesWhatAShellWouldSplit) {
    const std::vector<std::string> words{"grep", "-e", "", "two words", "it's", "$HOME"};
    EXPECT_EQ(shellWords(words), R"(grep -e '' 'two words' 'it'\''s' '$HOME')");
}

} // namespace
} // namespace quarn
