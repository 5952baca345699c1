#include "monitor/RateWindow.h"

#include <algorithm>

namespace quarn {

std::vector<double> RateWindow::push(std::span<const uint64_t> counters, double at) {
    if (!samples_.empty()) {
        const auto& newest = samples_.back();
        const bool sameShape = newest.counters.size() == counters.size();
        if (!sameShape || at < newest.at ||
            !std::equal(counters.begin(), counters.end(), newest.counters.begin(), std::greater_equal<>()))
            samples_.clear();
    }
    while (samples_.size() > 1 && at - samples_[1].at >= window_) samples_.pop_front();

    std::vector<double> rates(counters.size(), 0.0);
    if (!samples_.empty() && samples_.front().at < at) {
        const auto& oldest = samples_.front();
        for (size_t i = 0; i < counters.size(); ++i)
            rates[i] = static_cast<double>(counters[i] - oldest.counters[i]) / (at - oldest.at);
    }
    samples_.push_back({at, {counters.begin(), counters.end()}});
    return rates;
}

} // namespace quarn
