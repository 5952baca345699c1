#include "HelperKit/SerialQueue.h"

#include "HelperKit/ThreadTuning.h"

#include <array>
#include <future>
#include <latch>
#include <pthread.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace quarn;
using namespace std::chrono_literals;

template <class Value>
Value on(SerialQueue& queue, std::function<Value()> read) {
    Value value{};
    queue.sync([&] { value = read(); });
    return value;
}

int niceOf(SerialQueue& queue) {
    return on<int>(queue, [] { return getpriority(PRIO_PROCESS, 0); });
}

TEST(SerialQueue, RunsWorkInTheOrderOfPostingWhoeverPosts) {
    std::string order;
    SerialQueue queue("test");
    std::promise<void> postedByWork, posted;
    queue.async([&] {
        queue.async([&] { order += 'a'; });
        postedByWork.set_value();
        posted.get_future().wait();
    });
    postedByWork.get_future().wait();
    queue.async([&] { order += 'b'; });
    posted.set_value();
    queue.sync([&] { order += 'c'; });
    EXPECT_EQ(order, "abc");
}

TEST(SerialQueue, SyncFromManyThreadsRunsOneAtATime) {
    SerialQueue queue("test");
    int count = 0; // unguarded: the queue is what keeps it whole
    std::vector<std::jthread> callers;
    for (int caller = 0; caller < 8; ++caller)
        callers.emplace_back([&] {
            for (int i = 0; i < 200; ++i)
                queue.sync([&] {
                    const int before = count;
                    std::this_thread::yield();
                    count = before + 1;
                });
        });
    callers.clear();
    EXPECT_EQ(count, 1600);
}

TEST(SerialQueue, SyncCarriesExceptionsAndRunsInlineOnTheQueue) {
    SerialQueue queue("test"), other("other");
    const auto fail = [] { throw std::runtime_error("broken"); };
    EXPECT_THROW(queue.sync(fail), std::runtime_error);
    queue.sync([&] {
        EXPECT_TRUE(queue.isCurrent());
        EXPECT_THROW(queue.sync(fail), std::runtime_error);
        EXPECT_TRUE(on<bool>(other, [&] { return other.isCurrent() && !queue.isCurrent(); }));
    });
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, LogsEscapedExceptionsAndGoesOn) {
    ::testing::internal::CaptureStderr();
    {
        SerialQueue queue("queue with a fault");
        queue.async([] { throw std::runtime_error("broken"); });
        queue.async([] { throw 1; });
        const auto timer = queue.every(1h, 0ns, [] { throw std::runtime_error("late"); });
        EXPECT_EQ(on<int>(queue, [] { return 7; }), 7);
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Quarn: queue with a fault: broken\n"
              "Quarn: queue with a fault: an exception without a description\n"
              "Quarn: queue with a fault: late\n");
}

/// On the queue: waits until somebody destroys it, when posted closures are dropped at once.
void waitUntilClosing(SerialQueue& queue) {
    for (std::weak_ptr<int> dropped;; std::this_thread::yield()) {
        auto token = std::make_shared<int>();
        dropped = token;
        queue.async([token = std::move(token)] {});
        if (dropped.expired()) return;
    }
}

TEST(SerialQueue, DestructionRunsPendingWorkButNoTimers) {
    std::string order;
    std::thread::id queueThread, closureDestroyedOn;
    std::latch postedByWork(1);
    {
        SerialQueue queue("test");
        queue.async([&] {
            queueThread = std::this_thread::get_id();
            queue.async([&] { order += 'a'; });
            postedByWork.count_down();
            waitUntilClosing(queue);
        });
        std::shared_ptr<int> witness(
            new int, [&](int* p) { closureDestroyedOn = std::this_thread::get_id(), delete p; });
        queue.after(1h, [&, witness = std::move(witness)] { order += '!'; });
        postedByWork.wait();
        queue.async([&] { order += 'b'; });
    }
    EXPECT_EQ(order, "ab");
    EXPECT_EQ(closureDestroyedOn, queueThread);
}

TEST(SerialQueue, PostingWhileTheQueueStopsNeitherRunsNorBlocks) {
    std::promise<void> closing, tried;
    bool ran = false;
    auto owner = std::make_unique<SerialQueue>("test");
    SerialQueue& queue = *owner;
    queue.async([&] {
        waitUntilClosing(queue);
        closing.set_value();
        tried.get_future().wait();
    });
    std::jthread late([&] {
        closing.get_future().wait();
        queue.sync([&] { ran = true; });
        const auto timer = queue.every(1ms, 0ns, [&] { ran = true; });
        queue.after(0ns, [&] { ran = true; });
        tried.set_value();
    });
    owner.reset();
    EXPECT_FALSE(ran);
}

TEST(SerialQueue, TimerRunsAtOnceThenRepeatsUntilItDropsItself) {
    SerialQueue queue("test");
    std::promise<void> third;
    std::unique_ptr<RepeatingTimer> timer;
    int runs = 0;
    const auto start = std::chrono::steady_clock::now();
    queue.sync([&] {
        timer = queue.every(2ms, 1ms, [&] {
            if (++runs < 3) return;
            timer.reset();
            third.set_value();
        });
    });
    third.get_future().wait();
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, 4ms);
    EXPECT_LT(took, 10s);
    std::promise<void> later;
    queue.after(6ms, [&] { later.set_value(); });
    later.get_future().wait();
    EXPECT_EQ(runs, 3);
}

TEST(SerialQueue, TimersMayBeDroppedOnOtherThreadsAndAfterTheQueue) {
    std::unique_ptr<RepeatingTimer> outlives;
    const auto witness = std::make_shared<int>();
    {
        SerialQueue queue("test");
        outlives = queue.every(1ms, 0ns, [witness] {});
        for (int i = 0; i < 200; ++i) queue.every(1ms, 0ns, [witness] {}).reset();
        queue.sync([] {});
        EXPECT_EQ(witness.use_count(), 2); // here and in the timer that is left
    }
    EXPECT_EQ(witness.use_count(), 1);
    outlives->cancel();
}

TEST(SerialQueue, WorkRunsWithTheUsualTimerSlack) {
    SerialQueue queue("test");
    const auto usual = on<std::chrono::nanoseconds>(queue, threadTimerSlack);
    std::promise<std::chrono::nanoseconds> afterWaiting;
    int runs = 0;
    const auto timer = queue.every(2ms, 1ms, [&] {
        if (++runs == 2) afterWaiting.set_value(threadTimerSlack());
    });
    EXPECT_EQ(afterWaiting.get_future().get(), usual);
}

TEST(SerialQueue, NamesItsThreadAfterTheEndOfTheLabel) {
    SerialQueue queue("com.kelmora.quarn.sampler");
    std::array<char, 16> name{};
    queue.sync([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
    EXPECT_STREQ(name.data(), "a.quarn.sampler");
}

TEST(SerialQueue, LowersOnlyWhatMayBeRaisedAgain) {
    const int programs = getpriority(PRIO_PROCESS, 0);
    SerialQueue background("test", QualityOfService::background);
    EXPECT_EQ(niceOf(background), std::min(programs + 10, 19));

    for (const bool privileged : {true, false}) {
        SerialQueue queue("test", QualityOfService::userInitiated);
        // For this one thread only; an ordinary user has no privilege to lose.
        if (!privileged) queue.sync([] { syscall(SYS_setresuid, -1, 65534, -1); });
        EXPECT_EQ(niceOf(queue), programs);
        queue.setQualityOfService(QualityOfService::background);
        EXPECT_TRUE(privileged || niceOf(queue) == programs);
        queue.sync([&] { queue.setQualityOfService(QualityOfService::userInitiated); });
        EXPECT_EQ(niceOf(queue), programs);
    }
}

} // namespace
