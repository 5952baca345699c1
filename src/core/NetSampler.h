#pragma once

#include "core/InterfaceTotals.h"
#include "core/platform.h"
#include "core/sc.h"

#include <optional>
#include <vector>

namespace sysinfo {

/// Machine-wide network totals and rates since the previous sample.
class NetSampler {
public:
    /// A listing that fails repeats the previous sample, rates included, and does not move its time.
    SCNet sample(platform::Readers& readers);

    /// The arithmetic of `sample` on links listed at `nowNs` (CLOCK_MONOTONIC_RAW).
    SCNet advance(const std::vector<platform::Link>& links, uint64_t nowNs);

private:
    InterfaceTotals totals_;
    SCNet last_{};
    std::optional<uint64_t> lastNs_; ///< when the previous listing was taken
    std::vector<platform::Link> links_;
    std::vector<InterfaceCounters> counted_;
};

/// The next sample: `totals` with the rates over `seconds` (0 when `seconds` is not positive or a counter
/// fell); `previous` when there are no totals.
SCNet nextNetSample(const SCNet& previous, const std::optional<InterfaceTotals::Totals>& totals,
                    double seconds);

} // namespace sysinfo
