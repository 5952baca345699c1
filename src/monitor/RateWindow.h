#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace quarn {

/// Turns cumulative counters into rates averaged over about the last `window` seconds. Resets itself when a
/// counter falls, the number of counters changes or time goes back; the first push after that yields zeros.
class RateWindow {
public:
    explicit RateWindow(double window) : window_(window) {}

    double window() const { return window_; }

    /// One rate per second for each counter; `at` is in seconds on any steady scale.
    std::vector<double> push(std::span<const uint64_t> counters, double at);

private:
    struct Sample {
        double at;
        std::vector<uint64_t> counters;
    };

    double window_;
    std::deque<Sample> samples_;
};

} // namespace quarn
