#include "history/ClockTrust.h"

#include <algorithm>

namespace quarn {

namespace {

constexpr double greatestLeap = 7 * 86'400;
constexpr double probation = 86'400;

} // namespace

bool ClockTrust::believes(int64_t now, double steady) {
    if (!begun_) knownAt_ = steady;
    begun_ = true;
    const bool leapt = known_ && static_cast<double>(now - *known_) - (steady - knownAt_) > greatestLeap;
    if (leapt) {
        if (!doubtedSince_) doubtedSince_ = steady;
        if (steady - *doubtedSince_ < probation) return false;
    }
    doubtedSince_.reset();
    // A clock that begins far in the past, before the network tells the time, does not make the true date
    // a leap.
    known_ = leapt || !known_ ? now : std::max(now, *known_);
    knownAt_ = steady;
    return true;
}

} // namespace quarn
