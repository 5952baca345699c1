#pragma once

#include "HelperKit/Queue.h"

#include <optional>
#include <string>
#include <string_view>

namespace quarn {

/// How often the user wants the machine sampled; stored as its raw text.
enum class SamplingProfile { diagnostic, normal, powerSaving };

double baseTick(SamplingProfile profile);              ///< seconds
std::string_view rawText(SamplingProfile profile);     ///< "diagnostic", "normal", "powerSaving"
std::string_view displayName(SamplingProfile profile); ///< "Diagnostic", "Normal", "Power saving"
std::optional<SamplingProfile> profileFromText(std::string_view rawText);
/// The profile for an interval of seconds stored by an older version; none when it makes no sense.
std::optional<SamplingProfile> migratedFromLegacyInterval(double seconds);
/// "Diagnostic: every 1 s. Normal: every 2 s. Power saving: every 5 s."
std::string cadenceSummary();

/// The slow readings whose periods the plan fixes.
enum class Resource {
    processes, ///< the plan's own interval
    disks,     ///< each tick, as the two below
    interfaces,
    gpu,
    volumes,      ///< 30 s
    systemPower,  ///< 2 s
    powerSplit,   ///< 4 s, the privileged helper's power record too
    smcKeys,      ///< 8 s
    temperatures, ///< 4 s
    battery,      ///< 10 s
};

/// What one tick reads and how often it comes, from the profile and from whether a window is visible.
struct SamplingPlan {
    double tick = 2;            ///< seconds
    double processInterval = 2; ///< least seconds between two process lists
    bool deviceLists = true;    ///< disk and interface lists are re-read on each tick
    QualityOfService qos = QualityOfService::userInitiated;
    double networkWindow = 2; ///< seconds

    bool operator==(const SamplingPlan&) const = default;

    /// Foreground: a window is visible or a panel is open. Background stretches the tick to at least
    /// `backgroundInterval` seconds.
    static SamplingPlan foreground(SamplingProfile profile);
    static SamplingPlan background(SamplingProfile profile, double backgroundInterval);

    /// `nominal` seconds rounded up to whole ticks; `nominal` itself when the tick is not positive.
    double wholeTicks(double nominal) const;
    /// Whether a reading that was taken `elapsed` seconds ago is due, with half a tick of slack.
    bool isDue(Resource resource, double elapsed) const;
};

} // namespace quarn
