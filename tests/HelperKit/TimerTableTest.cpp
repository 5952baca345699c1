#include "HelperKit/TimerTable.h"

namespace {

using namespace quarn;
using namespace std::chrono_literals;

/// A table whose time stands at `now`, in milliseconds since the start.
class TimerTableTest : public ::testing::Test {
protected:
    std::shared_ptr<TimedWork> add(Queue::Duration delay, Queue::Duration interval, Queue::Duration leeway,
                                   std::function<void()> work) {
        auto timed =
            std::make_shared<TimedWork>(TimerTable::Instant(now), delay, interval, leeway, std::move(work));
        table.add(timed);
        return timed;
    }
    void runAt(std::chrono::milliseconds time) {
        now = time;
        table.runDue();
    }

    std::chrono::milliseconds now = 0ms;
    std::vector<int64_t> runs;
    TimerTable table{[this] { return TimerTable::Instant(now); },
                     [](const std::function<void()>& work) { work(); }};
    std::function<void()> note = [this] { runs.push_back(now.count()); };
};

TEST_F(TimerTableTest, KeepsTheCadenceAndDropsMissedRuns) {
    add(0ms, 10ms, 0ms, [this] {
        note();
        if (now == 20ms) now = 57ms; // slow work: 30, 40 and 50 pass meanwhile
    });
    for (const auto time : {0ms, 1ms, 13ms, 19ms, 20ms, 57ms, 59ms, 60ms, 69ms, 200ms}) runAt(time);
    EXPECT_EQ(runs, (std::vector<int64_t>{0, 13, 20, 60, 200}));
}

TEST_F(TimerTableTest, RunsTheLongestDueFirstAndEachOnce) {
    std::string order;
    add(3ms, 0ms, 0ms, [&] { order += 'b'; });
    add(1ms, 1ms, 0ms, [&] { order += 'a'; });
    add(9ms, 0ms, 0ms, [&] { order += 'c'; });
    runAt(5ms);
    EXPECT_EQ(order, "ab");
    runAt(20ms);
    EXPECT_EQ(order, "abac");
}

TEST_F(TimerTableTest, WakesForTheEarliestWithinTheLeewayOfAll) {
    EXPECT_EQ(table.nextWakeUp(), std::nullopt);
    const auto expect = [&](Queue::Duration due, Queue::Duration slack) {
        EXPECT_EQ(table.nextWakeUp(), (TimerTable::WakeUp{TimerTable::Instant(due), slack}));
    };
    add(100ms, 100ms, 30ms, note);
    expect(100ms, 30ms);
    add(500ms, 0ms, 0ms, note); // far away: no reason to be exact about the first
    expect(100ms, 30ms);
    const auto close = add(110ms, 0ms, 5ms, note);
    expect(100ms, 15ms);
    table.remove(*close);
    add(105ms, 0ms, 50ms, note);
    expect(100ms, 30ms);
    add(90ms, 0ms, 0ms, note);
    expect(90ms, 0ms);
}

TEST_F(TimerTableTest, WorkMayRemoveItselfAndOthersAndAddMore) {
    std::shared_ptr<TimedWork> self, other;
    self = add(1ms, 1ms, 0ms, [&] {
        note();
        table.remove(*self);
        table.remove(*other);
        add(1ms, 0ms, 0ms, note);
    });
    other = add(2ms, 1ms, 0ms, [] { FAIL() << "was removed before its time"; });
    runAt(2ms);
    runAt(3ms);
    EXPECT_EQ(runs, (std::vector<int64_t>{2, 3}));
    EXPECT_EQ(table.nextWakeUp(), std::nullopt);
}

TEST_F(TimerTableTest, ReleasesClosuresEvenThoseThatOwnTheirOwnTimer) {
    const auto resource = std::make_shared<int>();
    add(1ms, 0ms, 0ms, [resource] {});
    const auto addOwnOwner = [&](Queue::Duration interval, bool removesItself) {
        const auto timed = add(5ms, interval, 0ms, {});
        timed->work = [this, timed, resource, removesItself] {
            if (removesItself) table.remove(*timed);
        };
    };
    addOwnOwner(0ms, false);
    addOwnOwner(1ms, true);
    addOwnOwner(1ms, false);
    EXPECT_EQ(resource.use_count(), 5);
    runAt(1ms);
    EXPECT_EQ(resource.use_count(), 4);
    runAt(5ms);
    EXPECT_EQ(resource.use_count(), 2);
    table.clear();
    EXPECT_EQ(resource.use_count(), 1);
}

TEST_F(TimerTableTest, TimesOutOfRangeNeitherOverflowNorSpin) {
    add(Queue::Duration::max(), 0ms, Queue::Duration::max(), note);
    add(Queue::Duration::min(), 1ns, Queue::Duration::min(), note);
    runAt(0ms);
    EXPECT_EQ(runs, (std::vector<int64_t>{0}));
    EXPECT_EQ(table.nextWakeUp(), (TimerTable::WakeUp{TimerTable::Instant(1ms), 0ns}));
    add(0ms, Queue::Duration::max(), 0ms, note);
    runAt(1h);
    EXPECT_EQ(runs.size(), 3U);
}

} // namespace
