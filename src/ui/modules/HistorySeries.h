#pragma once

#include "history/HistoryReads.h"

#include <span>
#include <vector>

/// From what the history answers to the lines of charts.
namespace quarn {

struct AppMinute;

/// Of the machine. Means hold for a period, peaks are the greatest within it.
enum class SystemLine {
    cpu, ///< percent, 100 is every core
    cpuPeak,
    memory, ///< bytes
    memoryPeak,
    diskRead, ///< bytes a second, as the next three
    diskWritten,
    received,
    sent,
    power, ///< watts
};
/// NaN when it was not measured.
double valueOf(const SystemMetrics& metrics, SystemLine line);

/// Of an application, by period.
enum class AppLine {
    cpu,    ///< percent of a core
    memory, ///< bytes, while it had processes
    memoryPeak,
    diskRead, ///< bytes in the period, as the next three
    diskWritten,
    received,
    sent,
    energy, ///< score in the period
};
/// The lines that tell of what applications are ranked by.
std::span<const AppLine> appLines(AppHistoryMetric metric);

/// Lines over periods that follow each other, with holes where nothing was recorded.
struct HistorySeries {
    struct Period {
        int64_t from = 0; ///< Unix seconds
        int64_t to = 0;   ///< exclusive

        bool operator==(const Period&) const = default;
    };
    std::vector<Period> periods;
    std::vector<std::vector<double>> lines; ///< by line, by period; NaN is not known
};

/// Points are put together where they are too many to tell apart: those of the machine by five minutes for
/// the day and by four hours for the month, all by weeks for two years.
HistorySeries systemSeries(const HistoryAnswer& answer, std::span<const SystemLine> lines);
/// Of the application that was asked for. Where the machine was recorded and the application was not, it did
/// nothing.
HistorySeries appSeries(const HistoryAnswer& answer, std::span<const AppLine> lines);
/// Of an application in the last minutes, up to `now` in Unix seconds.
HistorySeries appSeries(std::span<const AppMinute> minutes, std::span<const AppLine> lines, int64_t now);

} // namespace quarn
