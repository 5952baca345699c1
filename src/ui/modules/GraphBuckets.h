#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace quarn {

/// The history of a mini graph: each column is the peak of its slice of time, never an average, so that a
/// short spike stays visible.
class GraphBuckets {
public:
    explicit GraphBuckets(size_t bucketCount) : bucketCount_(bucketCount) {}

    /// Takes a value at `time` (seconds); NaN is no reading. The slice is `sliceSeconds`, or else
    /// `spanSeconds` over the number of columns, and never shorter than 0.2 s.
    void pushSample(double value, double time, double spanSeconds, std::optional<double> sliceSeconds = {});

    /// The closed slices, oldest first, at most as many as there are columns.
    const std::vector<double>& buckets() const { return buckets_; }
    size_t bucketCount() const { return bucketCount_; }

    /// Forgets what was pushed and keeps `bucketCount` columns from now on.
    void reset(size_t bucketCount) { *this = GraphBuckets(bucketCount); }

private:
    std::vector<double> buckets_;
    size_t bucketCount_;
    double bucketPeak_ = std::numeric_limits<double>::quiet_NaN();
    std::optional<double> bucketStart_;
};

} // namespace quarn
