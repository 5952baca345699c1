#include "core/IOReport.h"

#include <cmath>
#include <cstdlib>
#include <deque>

namespace {

using namespace sysinfo;

SCPower split(std::vector<EnergyChannel> gained, double seconds) { return splitPower(gained, seconds); }

TEST(PowerSplit, Units) {
    struct Case {
        const char* unit;
        int64_t energy;
        double seconds, watts;
    };
    for (const auto& c :
         {Case{"mJ", 500, 0.5, 1}, Case{"nJ", 2'000'000'000, 2, 1}, Case{"uJ", 3'000'000, 1, 3},
          Case{"µJ", 3'000'000, 1, 3}, Case{"J", 5, 1, 5}, Case{"", 5, 1, 5}})
        EXPECT_DOUBLE_EQ(split({{"1", "CPU Energy", c.unit, c.energy}}, c.seconds).cpuWatts, c.watts)
            << c.unit;
}

TEST(PowerSplit, ChannelsAndWhatTheyMark) {
    struct Case {
        const char* channel;
        double SCPower::*field;
        bool marks;
    };
    for (const auto& c : {Case{"CPU Energy", &SCPower::cpuWatts, true}, Case{"GPU", &SCPower::gpuWatts, true},
                          Case{"ANE", &SCPower::aneWatts, true}, Case{"DRAM", &SCPower::dramWatts, true},
                          Case{"ISP", &SCPower::ispWatts, false}, Case{"DISP", &SCPower::displayWatts, false},
                          Case{"DISPEXT", &SCPower::displayWatts, false}}) {
        const auto power = split({{"1", c.channel, "J", 2}, {"2", c.channel, "J", 3}}, 1);
        EXPECT_EQ(power.*c.field, 5) << c.channel << ": channels of one name add up";
        EXPECT_EQ(power.available, c.marks) << c.channel;
    }
    const auto media = split({{"1", "AVE", "J", 2}, {"2", "VDEC", "J", 1}}, 1);
    EXPECT_EQ(media.encoderWatts, 2);
    EXPECT_EQ(media.decoderWatts, 1);
    EXPECT_FALSE(media.available) << "the four main domains rest at 0";
    EXPECT_TRUE(split({{"1", "AVE", "J", 2}, {"2", "GPU", "J", 1}}, 1).available);
    EXPECT_FALSE(split({{"1", "CPU Energy", "J", 0}, {"2", "GPU", "J", 0}}, 1).available);
    EXPECT_FALSE(split({{"1", "cpu energy", "J", 9}, {"2", "psys", "J", 9}}, 1).available) << "unknown names";
}

TEST(EnergyBetween, OnlyWhatCanBeCompared) {
    const auto gained =
        energyBetween({{"a", "GPU", "J", 10}, {"gone", "GPU", "J", 1}, {"fell", "GPU", "J", 9}},
                      {{"new", "GPU", "J", 99}, {"a", "GPU", "J", 14}, {"fell", "GPU", "J", 3}});
    ASSERT_EQ(gained.size(), 1u);
    EXPECT_EQ(gained[0].id, "a");
    EXPECT_EQ(gained[0].energy, 4);
}

/// Plays back samples, one a call, against a clock that the test moves.
struct Machine {
    struct Source final : EnergySource {
        std::deque<std::optional<EnergySample>>* script = nullptr;
        std::optional<EnergySample> sample() override {
            auto next = script->empty() ? std::nullopt : script->front();
            if (!script->empty()) script->pop_front();
            return next;
        }
    };

    std::deque<std::optional<EnergySample>> script;
    uint64_t now = 0;
    double total = 30;

    IOReport open() {
        auto source = std::make_unique<Source>();
        source->script = &script;
        return {std::move(source), [this] { return now; }, [this] { return total; }};
    }
};

EnergySample cpu(int64_t joules) { return {{"p0", "CPU Energy", "J", joules}}; }
constexpr uint64_t second = 1'000'000'000;

TEST(IOReport, AveragesSinceTheCallBefore) {
    Machine machine;
    machine.script = {cpu(100), cpu(110), cpu(150)};
    auto report = machine.open();
    EXPECT_TRUE(report.ready());
    machine.now = 2 * second;
    auto power = report.sample();
    EXPECT_EQ(power.cpuWatts, 5) << "the first call measures from construction";
    EXPECT_EQ(power.sysWatts, 30);
    EXPECT_TRUE(power.available);
    machine.now = 4 * second;
    machine.total = NAN;
    power = report.sample();
    EXPECT_EQ(power.cpuWatts, 20);
    EXPECT_EQ(power.sysWatts, 0);
}

TEST(IOReport, NoTimeNoFigures) {
    Machine machine;
    machine.script = {cpu(100), cpu(110), cpu(115)};
    auto report = machine.open();
    const auto power = report.sample();
    EXPECT_EQ(power.cpuWatts, 0);
    EXPECT_EQ(power.sysWatts, 0);
    EXPECT_FALSE(power.available);
    machine.now = second;
    EXPECT_EQ(report.sample().cpuWatts, 5) << "the sample that gave nothing was the new baseline";
}

TEST(IOReport, FailedReadings) {
    Machine none;
    none.script = {std::nullopt, cpu(1)};
    auto notReady = none.open();
    none.now = second;
    EXPECT_FALSE(notReady.ready());
    EXPECT_EQ(notReady.sample().sysWatts, 0) << "not ready, and it stays so";

    Machine machine;
    machine.script = {cpu(100), std::nullopt, cpu(130), EnergySample{}, cpu(200)};
    auto report = machine.open();
    machine.now = second;
    EXPECT_EQ(report.sample().cpuWatts, 0);
    machine.now = 3 * second;
    EXPECT_EQ(report.sample().cpuWatts, 10) << "over all of the three seconds";
    machine.now = 4 * second;
    auto power = report.sample();
    EXPECT_FALSE(power.available) << "the counters may no longer be read";
    EXPECT_EQ(power.sysWatts, 30);
    machine.now = 5 * second;
    EXPECT_FALSE(report.sample().available) << "and are back: nothing to compare with yet";
}

TEST(IOReport, DebugLines) {
    ::setenv("SC_DEBUG", "", 1);
    Machine machine;
    machine.script = {cpu(100), cpu(103), EnergySample{}};
    auto report = machine.open();
    ::unsetenv("SC_DEBUG");
    ::testing::internal::CaptureStderr();
    machine.now = 2 * second;
    report.sample();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "delta CPU Energy = 3 (1.5 W)\n");
    ::testing::internal::CaptureStderr();
    machine.now = 3 * second;
    report.sample();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "delta has no IOReportChannels\n");

    Machine quiet;
    quiet.script = {cpu(100), cpu(103)};
    auto silent = quiet.open();
    ::testing::internal::CaptureStderr();
    quiet.now = second;
    silent.sample();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

} // namespace
