#include "ui/modules/SteadyTop.h"

#include "ui/modules/Scale.h"

#include <algorithm>

namespace quarn {

double SteadyTop::follow(double largest, double now) {
    const double needed = niceTop(largest);
    if (needed >= top_) {
        top_ = needed;
        lowerSince_.reset();
        return top_;
    }
    if (!lowerSince_) {
        lowerSince_ = now;
        lowerTop_ = needed;
    }
    lowerTop_ = std::max(lowerTop_, needed);
    if (now - *lowerSince_ < patience) return top_;
    top_ = lowerTop_;
    lowerSince_.reset();
    return top_;
}

} // namespace quarn
