#include "history/MetricsReads.h"

#include <algorithm>

namespace quarn {

double rankOf(const AppMetrics& app, AppHistoryMetric metric) {
    const auto bytes = [](int64_t one, int64_t other) {
        return static_cast<double>(one) + static_cast<double>(other);
    };
    switch (metric) {
    case AppHistoryMetric::cpu: return app.cpuSeconds;
    case AppHistoryMetric::memory: return app.seconds > 0 ? app.memoryByteSeconds / app.seconds : 0;
    case AppHistoryMetric::disk: return bytes(app.diskReadBytes, app.diskWriteBytes);
    case AppHistoryMetric::energy: return app.energyImpact;
    case AppHistoryMetric::network: return bytes(app.networkInBytes, app.networkOutBytes);
    }
    return 0;
}

int64_t spanSeconds(TopAppsRange range) {
    switch (range) {
    case TopAppsRange::hour: return 3600;
    case TopAppsRange::day: return 86'400;
    case TopAppsRange::week: return 604'800;
    case TopAppsRange::month: return 2'592'000;
    }
    return 3600;
}

void rankApps(std::vector<AppTotal>& apps, AppHistoryMetric metric, size_t limit) {
    std::stable_sort(apps.begin(), apps.end(), [&](const AppTotal& a, const AppTotal& b) {
        return rankOf(a.metrics, metric) > rankOf(b.metrics, metric);
    });
    if (apps.size() > limit) apps.resize(limit);
}

} // namespace quarn
