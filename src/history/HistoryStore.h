#pragma once

#include "history/HistorySample.h"

namespace quarn {

/// The samples of the last half hour: all of the last ten minutes, about one a second of the time before.
/// A plain value, whose copy shares the samples.
class HistoryStore {
public:
    double duration = 1800;  ///< seconds; older samples are dropped
    double denseSpan = 600;  ///< seconds at the end of which every sample is kept
    double sparseStep = 1.0; ///< seconds between two samples before that, about
    size_t limit = 7500;     ///< samples
    size_t batch = 64;       ///< thinning waits for as many

    const std::vector<SharedSample>& samples() const { return samples_; } ///< oldest first

    /// `now` is the wall clock, on the scale of the samples' times.
    void append(SharedSample sample, WallTime now);

    /// Puts the samples of earlier runs before those of this one; what is too old, or not older than this
    /// run, is dropped. `breaks` are theirs. Answers the breaks that still lie in the last `duration`, with
    /// the one between the two runs.
    std::vector<HistoryBreak> restore(std::vector<SharedSample> restored, std::vector<HistoryBreak> breaks,
                                      WallTime now);

    /// The samples that are at least nine tenths of `minStep` seconds after the one kept before; the first is
    /// compared with `after`, when there is one. So a tick that comes a little early is not lost.
    static std::vector<SharedSample> thinned(std::span<const SharedSample> samples,
                                             const HistorySample* after, double minStep);

private:
    void thinOld(WallTime now);

    std::vector<SharedSample> samples_;
    size_t thinnedCount_ = 0; ///< how many of the first have been thinned
};

} // namespace quarn
