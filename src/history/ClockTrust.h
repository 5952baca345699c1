#pragma once

#include <cstdint>
#include <optional>

namespace quarn {

/// Says whether the date may be believed before history is deleted for its age. A clock that is set years
/// ahead for a moment must not cost the history: a date that lies more than a week after what the last known
/// one and the time since would give is believed once it has stayed for a day.
class ClockTrust {
public:
    /// `newest` is the time of the newest record, Unix seconds; nullopt when there is none.
    explicit ClockTrust(std::optional<int64_t> newest) : known_(newest) {}

    /// `now` in Unix seconds, `steady` in seconds on a scale that only goes forward, sleep included.
    bool believes(int64_t now, double steady);

private:
    std::optional<int64_t> known_; ///< the last date believed
    double knownAt_ = 0;           ///< on the steady scale
    std::optional<double> doubtedSince_;
    bool begun_ = false;
};

} // namespace quarn
