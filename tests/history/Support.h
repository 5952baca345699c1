#pragma once

#include "history/HistoryTime.h"
#include "history/MetricsColumns.h"
#include "history/MetricsStore.h"
#include "support/FaultVfs.h"
#include "support/TempRoot.h"

#include <stdlib.h>
#include <time.h>

namespace quarn::testing {

inline constexpr int64_t day = 86'400;
inline constexpr int64_t fullHour = 1'790'002'800;

/// The message of the SQLiteError that `action` throws; empty when it throws none.
inline std::string failureOf(const std::function<void()>& action) {
    try {
        action();
        return {};
    } catch (const SQLiteError& error) {
        return error.what();
    }
}

/// A folder for one history database.
struct HistoryFolder : TempRoot {
    std::filesystem::path file() const { return path() / "metrics.sqlite"; }
    /// The database as any other program sees it.
    SQLiteConnection look() const {
        return SQLiteConnection(file().string(), SQLiteConnection::Access::reading);
    }
    int64_t number(std::string_view sql) const { return look().integer(sql).value_or(-1); }
    bool isSound() const {
        SQLiteConnection db(file().string());
        auto& check = db.statement("PRAGMA integrity_check");
        const bool sound = check.step() && check.text(0) == "ok";
        check.reset();
        return sound;
    }
};

/// The local time zone, while it lives; a POSIX text, so that no data of zones need be installed.
struct TimeZone {
    explicit TimeZone(const char* zone) { set(zone); }
    ~TimeZone() { set("UTC0"); }
    static void set(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
};
inline constexpr const char* berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
inline constexpr const char* kolkata = "IST-5:30";
inline constexpr const char* losAngeles = "PST8PDT,M3.2.0,M11.1.0";

/// A minute in which `bytes` were read; its other figures follow from that. All of them are whole, so that
/// sums are exact.
inline SystemMetrics minuteOf(int64_t bytes) {
    return {.seconds = 60,
            .cpuSeconds = static_cast<double>(bytes % 61),
            .peakCPUPercent = static_cast<double>(bytes % 101),
            .peakMemoryBytes = bytes % 1009,
            .diskReadBytes = bytes};
}

inline AppMetrics appOf(int64_t bytes, std::string name = "Editor") {
    return {.name = std::move(name), .seconds = 60, .peakMemoryBytes = bytes % 1009, .diskWriteBytes = bytes};
}

/// All that was ever recorded, kept plainly: what every total is compared with.
struct Ledger {
    std::map<int64_t, SystemMetrics> system;                   ///< by minute
    std::map<int64_t, std::map<std::string, AppMetrics>> apps; ///< by hour

    void note(const MetricsBatch& batch) {
        for (const auto& [start, metrics] : batch.system) mergeInto(system[start], metrics);
        for (const auto& [start, hour] : batch.apps)
            for (const auto& [app, metrics] : hour) mergeInto(apps[start][app], metrics);
    }
    SystemMetrics total(int64_t from, int64_t to) const {
        SystemMetrics sum;
        for (auto each = system.lower_bound(from); each != system.end() && each->first < to; ++each)
            mergeInto(sum, each->second);
        return sum;
    }
    std::map<std::string, AppMetrics> appTotals(int64_t from, int64_t to) const {
        std::map<std::string, AppMetrics> sums;
        for (auto hour = apps.lower_bound(from); hour != apps.end() && hour->first < to; ++hour)
            for (const auto& [app, metrics] : hour->second) mergeInto(sums[app], metrics);
        return sums;
    }
};

/// A database in Berlin on a quick disk, and a ledger of what it was given.
struct LedgeredHistory {
    void write(const MetricsBatch& batch) {
        store.write(batch);
        ledger.note(batch);
    }

    FaultVfs quickDisk;
    HistoryFolder folder;
    TimeZone zone{berlin};
    MetricsStore store{folder.file()};
    Ledger ledger;
};

inline std::map<std::string, AppMetrics> byApp(const std::vector<AppTotal>& totals) {
    std::map<std::string, AppMetrics> result;
    for (const auto& total : totals) result[total.bundlePath] = total.metrics;
    return result;
}

} // namespace quarn::testing

namespace quarn {

inline void PrintTo(const SystemMetrics& m, std::ostream* out) {
    *out << m.seconds << " s, CPU " << m.cpuSeconds << " s, peak " << m.peakCPUPercent << ", read "
         << m.diskReadBytes;
}
inline void PrintTo(const AppMetrics& m, std::ostream* out) {
    *out << m.name << " " << m.seconds << " s, written " << m.diskWriteBytes << ", peak "
         << m.peakMemoryBytes;
}

} // namespace quarn
