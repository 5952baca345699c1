#include "history/History.h"

#include "core/Locale.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

namespace quarn {

History::History(Monitor& monitor, Prefs& prefs, Executor& main, std::filesystem::path file)
    : index_(std::make_shared<AppOwnerIndex>(monitor.root(), sysinfo::messageLocale())),
      metrics_(
          {.queue = queue_,
           .prefs = prefs,
           .file = std::move(file),
           .nameOf = [index = index_](
                         const std::string& app) { return std::string(index->identity(app).name.view()); }}),
      apps_(queue_, main, index_) {
    apps_.observeActivity(
        [this](WallTime at, std::span<const AppActivity> apps) { metrics_.addApps(at, apps); });
    monitor.observe([this](const Snapshot& snapshot) { take(snapshot); });
    if (monitor.root().isHost()) metrics_.start(prefs.saveMetricsHistory.get());
}

void History::take(const Snapshot& snapshot) {
    metrics_.record(snapshot);
    apps_.take(snapshot);
}

} // namespace quarn
