#include "history/History.h"

#include "core/Locale.h"
#include "monitor/Monitor.h"
#include "ui/settings/Prefs.h"

namespace quarn {

History::History(Setup setup)
    : setup_(std::move(setup)),
      index_(std::make_shared<AppOwnerIndex>(setup_.monitor.root(), sysinfo::messageLocale())),
      metrics_({.queue = queue_,
                .prefs = setup_.prefs,
                .file = setup_.file,
                .nameOf = [this](const std::string& app) { return nameOf(app); },
                .statusChanged = [this](const HistoryStatus& status) { tell(status); }}),
      live_({.queue = recording_,
             .file = setup_.liveFile,
             .breaks = [this] { return setup_.monitor.historyBreaks(); },
             .nameOf = [this](const std::string& app) { return nameOf(app); }}),
      apps_(queue_, setup_.main, index_) {
    apps_.observeActivity([this](WallTime at, std::span<const AppActivity> apps) {
        metrics_.addApps(at, apps);
        live_.addApps(at, apps);
    });
    setup_.monitor.observe([this](const Snapshot& snapshot) { take(snapshot); });
    if (!setup_.monitor.root().isHost()) return;
    metrics_.start(setup_.prefs.saveMetricsHistory.get());
    recording_.async([this] { restoreLive(); });
}

History::~History() {
    recording_.sync([] {}); // restored, if at all
}

void History::save() {
    metrics_.flush(MetricsRecorder::Wait::yes);
    live_.flush();
}

void History::take(const Snapshot& snapshot) {
    metrics_.record(snapshot);
    apps_.take(snapshot);
    // The first tick has no rates yet.
    if (snapshot.generation > 1) live_.add(snapshot, setup_.monitor.sensorGroupMaxima());
}

void History::tell(const HistoryStatus& status) {
    if (!setup_.statusChanged) return;
    setup_.main.async([this, alive = std::weak_ptr(alive_), status] {
        if (alive.lock()) setup_.statusChanged(status);
    });
}

void History::restoreLive() {
    live_.begin();
    if (!setup_.restored) return;
    setup_.main.async([this, alive = std::weak_ptr(alive_)] {
        if (alive.lock()) setup_.restored();
    });
}

std::string History::nameOf(const std::string& app) const {
    return std::string(index_->identity(app).name.view());
}

} // namespace quarn
