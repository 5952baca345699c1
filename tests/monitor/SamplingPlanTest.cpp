#include "monitor/SamplingPlan.h"

#include <cmath>

namespace {

using namespace quarn;

TEST(SamplingPlan, BackgroundStretchesTickAndProcessList) {
    EXPECT_EQ(SamplingPlan::foreground(SamplingProfile::powerSaving),
              (SamplingPlan{5, 5, true, QualityOfService::userInitiated, 5}));
    struct Case {
        SamplingProfile profile;
        double backgroundInterval, tick, processInterval, window;
    };
    for (const auto& c :
         {Case{SamplingProfile::diagnostic, 1, 1, 5, 1}, Case{SamplingProfile::normal, 1, 2, 6, 2},
          Case{SamplingProfile::powerSaving, 1, 5, 5, 5}, Case{SamplingProfile::diagnostic, 3, 3, 6, 1},
          Case{SamplingProfile::diagnostic, -4, 1, 5, 1}}) {
        const auto plan = SamplingPlan::background(c.profile, c.backgroundInterval);
        EXPECT_EQ(plan,
                  (SamplingPlan{c.tick, c.processInterval, false, QualityOfService::utility, c.window}));
    }
}

TEST(SamplingPlan, PeriodsAreWholeTicksWithHalfATickOfSlack) {
    struct Case {
        double tick;
        Resource resource;
        double notYet, due;
    };
    for (const auto& c : {Case{1, Resource::systemPower, 1.49, 1.5},
                          Case{5, Resource::systemPower, 2.49, 2.5}, Case{2, Resource::battery, 8.9, 9},
                          Case{3, Resource::battery, 10.4, 10.5}, Case{5, Resource::battery, 7.4, 7.5},
                          Case{2, Resource::disks, 0.9, 1.0}, Case{0, Resource::battery, 9.9, 10}}) {
        const SamplingPlan plan{c.tick, c.tick, true, QualityOfService::utility, c.tick};
        EXPECT_FALSE(plan.isDue(c.resource, c.notYet)) << c.tick;
        EXPECT_TRUE(plan.isDue(c.resource, c.due)) << c.tick;
    }
    const auto background = SamplingPlan::background(SamplingProfile::normal, 1);
    EXPECT_FALSE(background.isDue(Resource::processes, 4.9));
    EXPECT_TRUE(background.isDue(Resource::processes, 5));
}

TEST(SamplingProfile, FromTextsAndOldIntervals) {
    using enum SamplingProfile;
    for (const auto profile : {diagnostic, normal, powerSaving})
        EXPECT_EQ(profileFromText(rawText(profile)), profile);
    EXPECT_EQ(profileFromText("Normal"), std::nullopt);
    EXPECT_EQ(cadenceSummary(), "Diagnostic: every 1 s. Normal: every 2 s. Power saving: every 5 s.");
    for (const double senseless : {0.0, -1.0, double{NAN}, double{INFINITY}})
        EXPECT_EQ(migratedFromLegacyInterval(senseless), std::nullopt);
    for (const auto& [seconds, profile] : {std::pair{1.0, diagnostic}, {1.5, normal}, {60, powerSaving}})
        EXPECT_EQ(migratedFromLegacyInterval(seconds), profile);
}

} // namespace
