#pragma once

#include "HelperKit/WireRecords.h"
#include "core/sc.h"

#include <optional>
#include <string>

namespace quarn {

/// The power figures of one Snapshot.
struct PowerView {
    SCPower power{};
    bool powerStale = false;
    std::string powerSource;
    std::optional<HelperPower> freq;
};

/// The newest reading of each source of power figures, and which of them a snapshot shows. Times are seconds
/// on the Monitor's steady scale.
///
/// A reading is current while its age is at least −1 s (a job may finish just after the tick that shows it)
/// and under its lifetime, which is 6 s or, with long ticks, the longest time to the next reading.
///
/// The split by domain comes from
///   1. the privileged helper, while it is enabled, its record is current and says that it has one: it reads
///      what an ordinary user may not;
///   2. the local sample, while it is current and has one;
///   3. the newer of both that has one at all, flagged stale: an old figure is more use than a hole.
/// What the helper's record does not carry (encoder, decoder, image processor, display) is added from a
/// current local sample.
///
/// The total is the machine's own measurement while it is current and above 0, otherwise the helper's,
/// otherwise that of the local sample; it never comes from adding up domains, which leave out the rest of the
/// machine.
struct PowerReadings {
    struct System {
        double watts = 0;
        double acquired = 0;
        double lifetime = currentWindow;
    };
    struct Split {
        SCPower power{};
        double acquired = 0;
        double lifetime = currentWindow;
    };
    struct Helper {
        HelperPower power;
        double acquired = 0;
        double lifetime = currentWindow;
    };

    static constexpr double currentWindow = 6; ///< seconds

    std::optional<System> system;
    std::optional<Split> local;
    std::optional<Helper> helper;

    /// `powerSource` is "IOReport" for the local split, the record's own source name for the helper's, "SMC"
    /// when only the total is known and empty when nothing is.
    PowerView snapshot(double at, bool helperEnabled) const;

    bool helperIsCurrent(double at) const;
};

/// Whether a helper's record was made by the tool of that name, whose total leaves out all but processors.
bool isPowermetrics(const HelperPower& power);

} // namespace quarn
