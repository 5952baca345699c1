#pragma once

#include "history/AppMetrics.h"
#include "history/SystemMetrics.h"

#include <map>

namespace quarn {

/// What was measured since the last write. A period may be in several batches; the store merges them.
struct MetricsBatch {
    using Apps = std::map<std::string, AppMetrics, std::less<>>; ///< by application

    std::map<int64_t, SystemMetrics> system; ///< by minute, Unix seconds
    std::map<int64_t, Apps> apps;            ///< by hour, Unix seconds

    bool empty() const { return system.empty() && apps.empty(); }
};

} // namespace quarn
