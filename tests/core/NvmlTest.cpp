#include "core/Support.h"
#include "core/linux/NvidiaGate.h"
#include "core/linux/NvidiaGpus.h"

#include <atomic>
#include <dlfcn.h>
#include <future>

namespace {

using namespace quarn::testing;
using namespace std::chrono_literals;

TEST(Nvml, ReadsThroughALibraryLoadedAtRunTime) {
    const std::unique_ptr<void, int (*)(void*)> library(::dlopen(FAKE_NVML, RTLD_NOW), ::dlclose);
    ASSERT_TRUE(library) << ::dlerror();
    const auto sessions = reinterpret_cast<int (*)()>(::dlsym(library.get(), "fakeNvmlSessions"));
    {
        const auto nvml = Nvml::open(FAKE_NVML);
        ASSERT_TRUE(nvml);
        EXPECT_EQ(sessions(), 1);
        // One GPU fell off the bus; one measures next to nothing; the library does not know of watts.
        using Gpu = NvidiaReading;
        EXPECT_EQ(joinedEach(nvml->read(), &Gpu::slot, &Gpu::name, &Gpu::cores, &Gpu::busyPercent,
                             &Gpu::memUsed, &Gpu::memTotal, &Gpu::energyMillijoules, &Gpu::watts),
                  "0000:17:00.0|NVIDIA T4|2560|37|4294967296|17179869184|1500|- "
                  "0000:b1:00.0|NVIDIA A30|0|-|-|-|-|- ");
    }
    EXPECT_EQ(sessions(), 0) << "an open session keeps every GPU awake";
    EXPECT_EQ(slotOfBusId("00010000:01:00.0"), "10000:01:00.0") << "many domains";
    EXPECT_EQ(slotOfBusId(""), "");
    EXPECT_FALSE(Nvml::open("libquarn-no-such-library.so"));
    EXPECT_FALSE(Nvml::open("libc.so.6")) << "a library without these functions";
}

TEST(NvidiaGate, LetsIdleGpusSleep) {
    NvidiaGate gate;
    enum Use { sleeps, rests, works };
    const auto mayOpen = [&](double second, Use use) {
        const bool may = gate.mayOpen(second, {use == sleeps, true});
        if (may) gate.saw(second, use == works);
        return may;
    };
    EXPECT_FALSE(mayOpen(0, sleeps));
    EXPECT_TRUE(mayOpen(1, works));
    EXPECT_TRUE(mayOpen(10, rests)) << "since when it is not known";
    EXPECT_TRUE(mayOpen(15, rests));
    EXPECT_FALSE(mayOpen(16, rests)) << "for six seconds";
    EXPECT_FALSE(mayOpen(35, rests)) << "left alone, so that it can fall asleep";
    EXPECT_TRUE(mayOpen(36, rests)) << "another program keeps it awake";
    EXPECT_FALSE(mayOpen(43, rests));
    EXPECT_FALSE(mayOpen(44, sleeps));
    EXPECT_TRUE(mayOpen(46, rests)) << "woken by somebody who has work for it";
    NvidiaGate open;
    for (double now = 0; now < 100; now += 2) {
        EXPECT_TRUE(open.mayOpen(now, {false, false})) << "nothing here can sleep";
        open.saw(now, false);
    }
}

/// A session that counts how many of it are open, and may hang.
struct Fake {
    struct Session final : Nvml {
        explicit Session(Fake& owner) : fake(owner) { ++fake.open; }
        ~Session() override {
            if (--fake.open == 0) fake.closed.set_value();
        }
        std::vector<NvidiaReading> read() override {
            if (fake.hang) fake.release.wait();
            NvidiaReading reading;
            reading.slot = "0000:01:00.0";
            reading.busyPercent = ++fake.reads;
            return {reading};
        }
        Fake& fake;
    };

    NvidiaGpus::Setup setup(std::chrono::milliseconds patience, std::chrono::milliseconds unusedClose) {
        return {[this] { return std::make_unique<Session>(*this); }, [this] { return state; }, patience,
                unusedClose};
    }

    std::atomic<int> open = 0;
    std::atomic<int> reads = 0;
    std::atomic<bool> hang = false;
    NvidiaGate::State state{false, true};
    std::promise<void> closed, released;
    std::shared_future<void> release = released.get_future().share();
};

constexpr uint64_t second = 1'000'000'000;

TEST(NvidiaGpus, SharesReadingsAndNeverWakes) {
    Fake fake;
    NvidiaGpus gpus(fake.setup(10s, 10min));
    fake.state.asleep = true;
    EXPECT_TRUE(gpus.read(1 * second).empty());
    EXPECT_EQ(fake.open, 0) << "opening a session would have woken it";
    fake.state.asleep = false;
    ASSERT_EQ(gpus.read(3 * second).size(), 1u);
    EXPECT_EQ(gpus.read(3 * second + 1000).size(), 1u);
    EXPECT_EQ(fake.reads, 1) << "two readers of one moment";
    EXPECT_EQ(gpus.read(5 * second)[0].busyPercent, 2);
    fake.state.asleep = true;
    EXPECT_TRUE(gpus.read(7 * second).empty());
    EXPECT_EQ(fake.open, 0);
}

TEST(NvidiaGpus, ClosesTheSessionWhenNobodyAsks) {
    Fake fake;
    NvidiaGpus gpus(fake.setup(10s, 1ms));
    gpus.read(second);
    EXPECT_EQ(fake.closed.get_future().wait_for(10s), std::future_status::ready);
}

TEST(NvidiaGpus, ADriverThatHangsHoldsNobodyUp) {
    Fake fake;
    fake.hang = true;
    {
        NvidiaGpus gpus(fake.setup(1ms, 10min));
        EXPECT_TRUE(gpus.read(second).empty());
        EXPECT_TRUE(gpus.read(3 * second).empty());
        fake.released.set_value();
    }
    EXPECT_EQ(fake.open, 0);
}

} // namespace
