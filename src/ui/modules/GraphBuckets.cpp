#include "ui/modules/GraphBuckets.h"

#include <algorithm>
#include <cmath>

namespace quarn {

void GraphBuckets::pushSample(double value, double time, double spanSeconds,
                              std::optional<double> sliceSeconds) {
    constexpr double shortestSlice = 0.2;
    bucketPeak_ = std::isnan(bucketPeak_) ? value : std::max(bucketPeak_, value);
    if (!bucketStart_) bucketStart_ = time;
    const double slice = sliceSeconds.value_or(spanSeconds / static_cast<double>(bucketCount_));
    if (time - *bucketStart_ < (slice >= shortestSlice ? slice : shortestSlice)) return;
    buckets_.push_back(bucketPeak_);
    if (buckets_.size() > bucketCount_)
        buckets_.erase(buckets_.begin(), buckets_.end() - static_cast<std::ptrdiff_t>(bucketCount_));
    bucketPeak_ = value;
    bucketStart_ = time;
}

} // namespace quarn
