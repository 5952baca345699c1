#include "monitor/SamplingPlan.h"

#include "ui/settings/PrefTypes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

namespace quarn {

namespace {

struct ProfileRow {
    SamplingProfile profile;
    std::string_view rawText;
    std::string_view displayName;
    double baseTick;
};

constexpr std::array profiles{
    ProfileRow{SamplingProfile::diagnostic, "diagnostic", "Diagnostic", 1.0},
    ProfileRow{SamplingProfile::normal, "normal", "Normal", 2.0},
    ProfileRow{SamplingProfile::powerSaving, "powerSaving", "Power saving", 5.0},
};

const ProfileRow& row(SamplingProfile profile) { return profiles[static_cast<size_t>(profile)]; }

double nominalPeriod(Resource resource) {
    switch (resource) {
    case Resource::processes:
    case Resource::disks:
    case Resource::interfaces:
    case Resource::gpu: return 0;
    case Resource::volumes: return 30;
    case Resource::systemPower: return 2;
    case Resource::powerSplit: return 4;
    case Resource::smcKeys: return 8;
    case Resource::temperatures: return 4;
    case Resource::battery: break;
    }
    return 10;
}

} // namespace

double baseTick(SamplingProfile profile) { return row(profile).baseTick; }
std::string_view rawText(SamplingProfile profile) { return row(profile).rawText; }
std::string_view displayName(SamplingProfile profile) { return row(profile).displayName; }

std::optional<SamplingProfile> profileFromText(std::string_view text) {
    for (const auto& candidate : profiles)
        if (candidate.rawText == text) return candidate.profile;
    return {};
}

std::optional<SamplingProfile> migratedFromLegacyInterval(double seconds) {
    const auto text = samplingProfileForInterval(seconds);
    return text ? profileFromText(*text) : std::nullopt;
}

std::string cadenceSummary() {
    std::string summary;
    for (const auto& profile : profiles)
        summary += fmt::format("{}{}: every {} s.", summary.empty() ? "" : " ", profile.displayName,
                               profile.baseTick);
    return summary;
}

SamplingPlan SamplingPlan::foreground(SamplingProfile profile) {
    const double tick = baseTick(profile);
    return {tick, tick, true, QualityOfService::userInitiated, tick};
}

SamplingPlan SamplingPlan::background(SamplingProfile profile, double backgroundInterval) {
    SamplingPlan plan = foreground(profile);
    plan.tick = std::max(plan.tick, backgroundInterval);
    plan.processInterval = plan.wholeTicks(5);
    plan.deviceLists = false;
    plan.qos = QualityOfService::utility;
    return plan;
}

double SamplingPlan::wholeTicks(double nominal) const {
    return tick > 0 ? tick * std::max(1.0, std::ceil(nominal / tick - 1e-9)) : nominal;
}

bool SamplingPlan::isDue(Resource resource, double elapsed) const {
    const double period =
        resource == Resource::processes ? processInterval : wholeTicks(nominalPeriod(resource));
    return elapsed >= period - tick / 2;
}

} // namespace quarn
