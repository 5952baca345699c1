#include "core/IOReport.h"

#include <cmath>
#include <cstdlib>
#include <deque>

namespace {

using namespace sysinfo;

TEST(PowerSplit, Units) {
    const struct {
        const char* unit;
        int64_t energy;
        double seconds, watts;
    } cases[] = {{"mJ", 500, 0.5, 1},     {"nJ", 2'000'000'000, 2, 1},
                 {"uJ", 3'000'000, 1, 3}, {"µJ", 3'000'000, 1, 3},
                 {"J", 5, 1, 5},          {"", 5, 1, 5}};
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(channelWatts({"1", "CPU Energy", c.unit, c.energy}, c.seconds), c.watts) << c.unit;
}

TEST(PowerSplit, ChannelsAndWhatTheyMark) {
    const auto split = [](const EnergySample& gained) { return splitPower(gained, 2); };
    const struct {
        const char* channel;
        double SCPower::*field;
        bool marks;
    } cases[] = {{"CPU Energy", &SCPower::cpuWatts, true},  {"GPU", &SCPower::gpuWatts, true},
                 {"ANE", &SCPower::aneWatts, true},         {"DRAM", &SCPower::dramWatts, true},
                 {"ISP", &SCPower::ispWatts, false},        {"DISP", &SCPower::displayWatts, false},
                 {"AVE", &SCPower::encoderWatts, false},    {"VDEC", &SCPower::decoderWatts, false},
                 {"DISPEXT", &SCPower::displayWatts, false}};
    for (const auto& c : cases) {
        const auto power = split({{"1", c.channel, "J", 4}, {"2", c.channel, "J", 6}});
        EXPECT_EQ(power.*c.field, 5) << c.channel << ": channels of one name add up";
        EXPECT_EQ(power.available, c.marks) << c.channel << ": the four main domains must not all rest";
    }
    EXPECT_TRUE(split({{"1", "AVE", "J", 2}, {"2", "GPU", "J", 1}}).available);
    EXPECT_FALSE(split({{"1", "CPU Energy", "J", 0}, {"2", "GPU", "J", 0}}).available);
    EXPECT_FALSE(split({{"1", "cpu energy", "J", 9}, {"2", "psys", "J", 9}}).available) << "unknown names";
}

TEST(EnergyBetween, OnlyWhatCanBeCompared) {
    const auto gained =
        energyBetween({{"a", "GPU", "J", 10}, {"gone", "GPU", "J", 1}, {"fell", "GPU", "J", 9}},
                      {{"new", "GPU", "J", 99}, {"a", "GPU", "J", 14}, {"fell", "GPU", "J", 3}});
    ASSERT_EQ(gained.size(), 1u);
    EXPECT_EQ(gained[0].id, "a");
    EXPECT_EQ(gained[0].energy, 4);
}

/// A report over samples that are played back, one a call, on a clock that the test moves.
class Report {
public:
    explicit Report(std::deque<std::optional<EnergySample>> script)
        : report_(
              std::make_unique<Source>(std::move(script)), [this] { return now_; },
              [this] { return total_; }) {}

    bool ready() const { return report_.ready(); }
    SCPower at(uint64_t seconds, double systemWatts = 30) {
        now_ = seconds * 1'000'000'000;
        total_ = systemWatts;
        return report_.sample();
    }

private:
    struct Source final : EnergySource {
        explicit Source(std::deque<std::optional<EnergySample>> samples) : script(std::move(samples)) {}
        std::optional<EnergySample> sample() override {
            auto next = script.front();
            script.pop_front();
            return next;
        }
        std::deque<std::optional<EnergySample>> script;
    };

    uint64_t now_ = 0;
    double total_ = 0;
    IOReport report_;
};

EnergySample cpu(int64_t joules) { return {{"p0", "CPU Energy", "J", joules}}; }

TEST(IOReport, AveragesSinceTheReadingBefore) {
    Report report({cpu(100), cpu(110), cpu(150), {}, cpu(180), cpu(190), cpu(195), EnergySample{}, cpu(200)});
    EXPECT_TRUE(report.ready());
    const struct {
        uint64_t seconds;
        double systemWatts, cpu, system;
        bool available;
        const char* teaches;
    } calls[] = {
        {2, 30, 5, 30, true, "the first call measures from construction"},
        {4, NAN, 20, 0, true, "nothing tells the power of the whole"},
        {5, 30, 0, 0, false, "a reading that failed"},
        {7, 30, 10, 30, true, "over all of the three seconds"},
        {7, 30, 0, 0, false, "no time went by"},
        {8, 30, 5, 30, true, "the sample that gave nothing was the new baseline"},
        {9, 30, 0, 30, false, "the counters may no longer be read"},
        {10, 30, 0, 30, false, "and are back: nothing to compare with yet"},
    };
    for (const auto& call : calls) {
        const auto power = report.at(call.seconds, call.systemWatts);
        EXPECT_EQ(power.cpuWatts, call.cpu) << call.teaches;
        EXPECT_EQ(power.sysWatts, call.system) << call.teaches;
        EXPECT_EQ(power.available, call.available) << call.teaches;
    }

    Report notReady({{}, cpu(1), cpu(9)});
    EXPECT_FALSE(notReady.ready());
    EXPECT_EQ(notReady.at(1).sysWatts, 0) << "not ready, and it stays so";
}

TEST(IOReport, DebugLines) {
    for (const bool wanted : {true, false}) {
        if (wanted) ::setenv("SC_DEBUG", "", 1);
        Report report({cpu(100), cpu(103), EnergySample{}});
        ::unsetenv("SC_DEBUG");
        for (const auto& [second, line] :
             {std::pair{2, "delta CPU Energy = 3 (1.5 W)\n"}, {3, "delta has no IOReportChannels\n"}}) {
            ::testing::internal::CaptureStderr();
            report.at(static_cast<uint64_t>(second));
            EXPECT_EQ(::testing::internal::GetCapturedStderr(), wanted ? line : "");
        }
    }
}

} // namespace
