#include "core/linux/NvidiaGate.h"
#include "core/linux/NvidiaGpus.h"
#include "support/Joined.h"

#include <atomic>
#include <dlfcn.h>
#include <future>

namespace {

using namespace sysinfo::platform;
using quarn::testing::joined;
using namespace std::chrono_literals;

TEST(Nvml, ReadsThroughALibraryLoadedAtRunTime) {
    const std::unique_ptr<void, int (*)(void*)> library(::dlopen(FAKE_NVML, RTLD_NOW), ::dlclose);
    ASSERT_TRUE(library) << ::dlerror();
    const auto sessions = reinterpret_cast<int (*)()>(::dlsym(library.get(), "fakeNvmlSessions"));
    {
        const auto nvml = Nvml::open(FAKE_NVML);
        ASSERT_TRUE(nvml);
        EXPECT_EQ(sessions(), 1);
        const auto gpus = nvml->read();
        std::string seen;
        for (const auto& gpu : gpus)
            seen += joined(gpu.slot, gpu.name, gpu.cores, gpu.busyPercent, gpu.memUsed, gpu.memTotal,
                           gpu.energyMillijoules, gpu.watts) +
                    '\n';
        // One GPU fell off the bus; one measures next to nothing; the library does not know of watts.
        EXPECT_EQ(seen, "0000:17:00.0|NVIDIA T4|2560|37|4294967296|17179869184|1500|-\n"
                        "0000:b1:00.0|NVIDIA A30|0|-|-|-|-|-\n");
    }
    EXPECT_EQ(sessions(), 0) << "an open session keeps every GPU awake";
    EXPECT_EQ(slotOfBusId("00010000:01:00.0"), "10000:01:00.0") << "many domains";
    EXPECT_EQ(slotOfBusId(""), "");
    EXPECT_FALSE(Nvml::open("libquarn-no-such-library.so"));
    EXPECT_FALSE(Nvml::open("libc.so.6")) << "a library without these functions";
}

TEST(NvidiaGate, LetsIdleGpusSleep) {
    const struct {
        double second;
        bool isAsleep, mayOpen, isBusy;
        const char* teaches;
    } steps[] = {
        {0, true, false, false, "asleep"},
        {1, false, true, true, "at work"},
        {10, false, true, false, "at rest since then"},
        {15, false, true, false, "for less than six seconds"},
        {16, false, false, false, "for six seconds"},
        {35, false, false, false, "left alone, so that it can fall asleep"},
        {36, false, true, false, "another program keeps it awake"},
        {43, false, false, false, "at rest again"},
        {44, true, false, false, "asleep at last"},
        {46, false, true, false, "woken by somebody who has work for it"},
    };
    NvidiaGate gate;
    for (const auto& step : steps) {
        EXPECT_EQ(gate.mayOpen(step.second, {step.isAsleep, true}), step.mayOpen) << step.teaches;
        if (step.mayOpen) gate.saw(step.second, step.isBusy);
    }
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
