#pragma once

#include "history/MetricsReads.h"
#include "monitor/Snapshot.h"

#include <deque>
#include <map>
#include <set>
#include <span>
#include <unordered_map>

namespace quarn {

/// What one application did within a minute.
struct AppMinute {
    int64_t start = 0;   ///< Unix seconds, a multiple of 60
    double observed = 0; ///< seconds of it, whether or not the application was there
    AppMetrics metrics;  ///< without the name
};

/// What each application did in the last half hour, by minutes. A plain value; its owner keeps threads apart.
class AppLiveHistory {
public:
    static constexpr int64_t span = 1800; ///< seconds

    struct Use {
        Text app;           ///< its identity, see AppActivity
        AppMetrics metrics; ///< without the name
    };
    struct Minute {
        int64_t start = 0; ///< Unix seconds, a multiple of 60
        std::vector<Use> apps;
    };
    using Names = std::map<std::string, std::string, std::less<>>; ///< for people, by application

    AppLiveHistory() = default;
    /// One that was kept. The minutes must ascend.
    AppLiveHistory(std::deque<Minute> minutes, Names names);

    /// One process list, grouped by application: each application is in it once. Its interval goes whole to
    /// the minute of its end; over a hole of more than a minute nothing is added.
    void add(WallTime at, std::span<const AppActivity> apps);

    /// Applications that came without a name. The owner looks for the names, which may take a while, and
    /// brings them.
    const std::set<std::string, std::less<>>& unnamedApps() const { return unnamed_; }
    void name(const Names& names);

    /// Puts the minutes of earlier runs before those of this one; a minute that both have is added up.
    void restore(AppLiveHistory earlier, WallTime now);

    /// What each did since `now` − `span`, the greatest by `metric` first.
    std::vector<AppTotal> totals(WallTime now, AppHistoryMetric metric, size_t limit) const;
    /// What the application did since `now` − `span`, by minutes, oldest first. Minutes in which nothing was
    /// observed are missing.
    std::vector<AppMinute> minutesOf(std::string_view app, WallTime now) const;

    const std::deque<Minute>& minutes() const { return minutes_; } ///< oldest first
    const Names& names() const { return names_; }

private:
    void beginMinute(int64_t start);
    void indexNewest();
    AppMetrics& metricsOf(const Text& app);

    struct Hash {
        size_t operator()(const Text& text) const { return std::hash<std::string_view>()(text.view()); }
    };
    std::deque<Minute> minutes_;
    std::unordered_map<Text, size_t, Hash> places_; ///< in the newest minute
    std::optional<WallTime> lastList_;
    std::set<std::string, std::less<>> unnamed_;
    Names names_;
};

} // namespace quarn
