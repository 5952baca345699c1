#include "HelperKit/RunLoop.h"
#include "HelperKit/SignalPipe.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace {

using namespace quarn;

struct Pipe {
    Pipe() {
        int ends[2]{};
        EXPECT_EQ(::pipe(ends), 0);
        out.reset(ends[0]);
        in.reset(ends[1]);
    }
    void write(std::string_view text) const {
        ASSERT_EQ(::write(in.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    std::string read() const {
        std::array<char, 64> buffer{};
        const auto length = ::read(out.get(), buffer.data(), buffer.size());
        return {buffer.data(), static_cast<size_t>(std::max<ssize_t>(length, 0))};
    }
    scutil::UniqueFd out, in;
};

struct RunLoopTest : ::testing::Test {
    RunLoop loop;
    Pipe pipe;
};

TEST_F(RunLoopTest, RunsWorkOfOtherThreadsOnItsOwnUntilStopped) {
    int count = 0;
    const auto own = std::this_thread::get_id();
    {
        std::vector<std::jthread> posters;
        for (int i = 0; i < 4; ++i)
            posters.emplace_back([&] {
                for (int n = 0; n < 500; ++n)
                    loop.async([&] {
                        EXPECT_EQ(std::this_thread::get_id(), own);
                        if (++count == 2000) loop.stop();
                    });
            });
        loop.run();
    }
    EXPECT_EQ(count, 2000);
}

TEST_F(RunLoopTest, StopEndsTheRunAndKeepsTheRest) {
    std::string order;
    loop.async([&] {
        order += 'a';
        loop.stop();
    });
    loop.async([&] { order += 'b'; });
    loop.run();
    EXPECT_EQ(order, "a");

    loop.async([&] { loop.stop(); });
    loop.run();
    EXPECT_EQ(order, "ab");

    loop.stop(); // before the run
    loop.async([&] { order += 'c'; });
    loop.runPending(); // nobody asked this one to stop
    EXPECT_EQ(order, "abc");
    loop.async([&] { order += 'd'; });
    loop.run();
    EXPECT_EQ(order, "abc");

    std::jthread stopper([&] { loop.stop(); }); // while it sleeps
    loop.run();
}

TEST_F(RunLoopTest, ForgetsNoWorkPostedByWorkAndSurvivesExceptions) {
    ::testing::internal::CaptureStderr();
    loop.async([&] { loop.async([&] { loop.stop(); }); });
    loop.async([] { throw std::runtime_error("broken"); });
    loop.run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Quarn: main loop: broken\n");
}

TEST_F(RunLoopTest, ServesDescriptorsBesideWorkThatNeverEnds) {
    std::string got;
    const auto watch = loop.watch(pipe.out.get(), [&] {
        got += pipe.read();
        loop.stop();
    });
    std::function<void()> busy = [&] { loop.async(busy); };
    loop.async(busy);
    pipe.write("key");
    loop.run();
    EXPECT_EQ(got, "key");
}

TEST_F(RunLoopTest, ReportsWhatIsLeftAndTheEndOfTheFile) {
    int calls = 0;
    std::unique_ptr<RunLoop::Watch> watch;
    watch = loop.watch(pipe.out.get(), [&] {
        if (++calls < 3) return; // twice nothing is read
        if (pipe.read().empty()) watch.reset();
    });
    loop.runPending();
    EXPECT_EQ(calls, 0);
    pipe.write("x");
    loop.runPending();
    loop.runPending();
    loop.runPending();
    pipe.in.reset();
    for (int i = 0; i < 3; ++i) loop.runPending();
    EXPECT_EQ(calls, 4);
}

TEST_F(RunLoopTest, DroppedWatchIsNotServedEvenInTheSameRound) {
    const Pipe two;
    int calls = 0;
    std::unique_ptr<RunLoop::Watch> first, second;
    const auto dropBoth = [&] {
        ++calls;
        first.reset();
        second.reset();
    };
    first = loop.watch(pipe.out.get(), dropBoth);
    second = loop.watch(two.out.get(), dropBoth);
    pipe.write("x");
    two.write("x");
    loop.runPending();
    loop.runPending();
    EXPECT_EQ(calls, 1);
}

TEST_F(RunLoopTest, DescriptorClosedUnderItsWatchIsForgotten) {
    const auto watch = loop.watch(pipe.out.get(), [] { FAIL(); });
    ::testing::internal::CaptureStderr(); // opens a file, so before the descriptor becomes free
    pipe.out.reset();
    loop.runPending();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Quarn: main loop: a watched descriptor was closed\n");
    loop.stop();
    loop.run();
}

TEST(SignalPipe, TellsOfASignalHoweverLateItIsAsked) {
    SignalPipe signals{SIGUSR1};
    const auto past = std::chrono::steady_clock::now() - std::chrono::seconds(1);
    EXPECT_EQ(signals.waitUntil(past), std::nullopt);
    std::raise(SIGUSR1);
    EXPECT_EQ(signals.waitUntil(past), SIGUSR1) << "who is always late could never be stopped";
    EXPECT_EQ(signals.waitUntil(past), std::nullopt);
}

} // namespace
