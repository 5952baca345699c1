#include "history/AppLiveHistory.h"

#include "history/HistoryTime.h"
#include "history/MetricsColumns.h"

#include <limits>

namespace quarn {

namespace {

constexpr size_t mostAppNames = 4096; ///< a machine that builds software runs new programs for ever

int64_t minuteOf(WallTime time) { return roundedDown(unixSeconds(time), minuteSeconds); }

} // namespace

AppLiveHistory::AppLiveHistory(std::deque<Minute> minutes, Names names)
    : minutes_(std::move(minutes)), names_(std::move(names)) {}

void AppLiveHistory::add(WallTime at, std::span<const AppActivity> apps) {
    const auto elapsed = lastList_ ? observedSeconds(*lastList_, at) : std::nullopt;
    lastList_ = at;
    if (!elapsed || apps.empty()) return;
    if (const int64_t start = minuteOf(at); minutes_.empty() || minutes_.back().start != start)
        beginMinute(start);
    for (const AppActivity& activity : apps) metricsOf(activity.app).add(activity, *elapsed);
}

void AppLiveHistory::beginMinute(int64_t start) {
    // After the clock was set back, what it had run ahead is given up, so that the minutes ascend.
    while (!minutes_.empty() && minutes_.back().start >= start) minutes_.pop_back();
    while (!minutes_.empty() && minutes_.front().start <= start - span - minuteSeconds) minutes_.pop_front();
    minutes_.push_back({start, {}});
    places_.clear();
    if (names_.size() > mostAppNames) names_.clear(); // those still in use are asked for again
}

AppMetrics& AppLiveHistory::metricsOf(const Text& app) {
    auto& apps = minutes_.back().apps;
    const auto [found, isNew] = places_.try_emplace(app, apps.size());
    if (isNew) {
        apps.push_back({app, {}});
        if (!names_.contains(app.view())) unnamed_.emplace(app.view());
    }
    return apps[found->second].metrics;
}

void AppLiveHistory::name(const Names& names) {
    for (const auto& [app, name] : names) {
        names_[app] = name;
        unnamed_.erase(app);
    }
}

void AppLiveHistory::restore(AppLiveHistory earlier, WallTime now) {
    for (auto& [app, name] : earlier.names_) {
        unnamed_.erase(app);
        names_.try_emplace(app, std::move(name));
    }
    const int64_t oldest = minuteOf(now) - span;
    const int64_t newest = minutes_.empty() ? minuteOf(now) : minutes_.front().start;
    std::erase_if(earlier.minutes_,
                  [&](const Minute& minute) { return minute.start < oldest || minute.start > newest; });
    auto own = std::exchange(minutes_, std::move(earlier.minutes_));
    indexNewest();
    for (Minute& minute : own) {
        if (minutes_.empty() || minutes_.back().start < minute.start) {
            minutes_.push_back(std::move(minute));
            indexNewest();
        } else {
            for (const Use& use : minute.apps) mergeInto(metricsOf(use.app), use.metrics);
        }
    }
}

void AppLiveHistory::indexNewest() {
    places_.clear();
    if (minutes_.empty()) return;
    for (const Use& use : minutes_.back().apps) places_.emplace(use.app, places_.size());
}

std::vector<AppTotal> AppLiveHistory::totals(WallTime now, AppHistoryMetric metric, size_t limit) const {
    std::vector<AppTotal> totals;
    std::unordered_map<std::string_view, size_t> places;
    for (const Minute& minute : minutes_) {
        if (minute.start < minuteOf(now) - span) continue;
        for (const Use& use : minute.apps) {
            const auto [found, isNew] = places.try_emplace(use.app.view(), totals.size());
            if (isNew) totals.push_back({std::string(use.app.view()), {}});
            mergeInto(totals[found->second].metrics, use.metrics);
        }
    }
    rankApps(totals, metric, limit);
    for (AppTotal& total : totals)
        if (const auto name = names_.find(total.bundlePath); name != names_.end())
            total.metrics.name = name->second;
    return totals;
}

std::vector<AppMinute> AppLiveHistory::minutesOf(std::string_view app, WallTime now) const {
    std::vector<AppMinute> minutes;
    for (const Minute& minute : minutes_) {
        if (minute.start < minuteOf(now) - span) continue;
        AppMinute& own = minutes.emplace_back(AppMinute{minute.start, 0, {}});
        for (const Use& use : minute.apps) {
            own.observed = std::max(own.observed, use.metrics.seconds); // something runs all the time
            if (use.app.view() == app) own.metrics = use.metrics;
        }
    }
    return minutes;
}

} // namespace quarn
