#include "ui/modules/HistorySeries.h"

#include "history/AppLiveHistory.h"
#include "history/Calendar.h"
#include "history/HistoryTime.h"
#include "history/MetricsColumns.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quarn {

namespace {

constexpr double notMeasured = std::numeric_limits<double>::quiet_NaN();

double over(double sum, double seconds) { return seconds > 0 ? sum / seconds : notMeasured; }

double real(int64_t bytes) { return static_cast<double>(bytes); }

int64_t endOf(int64_t start, MetricsResolution resolution, const Calendar& calendar) {
    switch (resolution) {
    case MetricsResolution::minute: return start + minuteSeconds;
    case MetricsResolution::hour: return start + hourSeconds;
    case MetricsResolution::day: break;
    }
    return calendar.nextDay(start);
}

double valueOf(const AppMetrics& metrics, AppLine line, double seconds) {
    switch (line) {
    case AppLine::cpu: return over(100 * metrics.cpuSeconds, seconds);
    case AppLine::memory: return over(metrics.memoryByteSeconds, metrics.seconds);
    case AppLine::memoryPeak: return metrics.seconds > 0 ? real(metrics.peakMemoryBytes) : notMeasured;
    case AppLine::diskRead: return real(metrics.diskReadBytes);
    case AppLine::diskWritten: return real(metrics.diskWriteBytes);
    case AppLine::received: return real(metrics.networkInBytes);
    case AppLine::sent: return real(metrics.networkOutBytes);
    case AppLine::energy: return metrics.energyImpact;
    }
    return notMeasured;
}

/// The periods of an application's points, whether it was there or not.
std::vector<HistorySeries::Period> appPeriods(const HistoryAnswer& answer) {
    const Calendar calendar;
    const bool byDay = answer.question.span >= HistorySpan::month;
    const auto resolution = byDay ? MetricsResolution::day : MetricsResolution::hour;
    std::vector<HistorySeries::Period> periods;
    int64_t start = byDay ? calendar.startOfDay(answer.from) : roundedDown(answer.from, hourSeconds);
    for (; start < answer.to; start = periods.back().to)
        periods.push_back({start, endOf(start, resolution, calendar)});
    return periods;
}

/// Which points are shown as one: those of one part of a local day, or of one week.
class Chunks {
public:
    enum class Of { machine, application };
    Chunks(HistorySpan span, Of of, const Calendar& calendar) : calendar_(calendar) {
        const bool isMachine = of == Of::machine;
        if (span == HistorySpan::day && isMachine) seconds_ = 5 * minuteSeconds;
        if (span == HistorySpan::month && isMachine) seconds_ = 4 * hourSeconds;
        byWeek_ = span == HistorySpan::twoYears;
    }

    /// Whether this point does not belong to the one before. Points come in order.
    bool begins(int64_t start) {
        if (seconds_ == 0 && !byWeek_) return true;
        if (start >= nextDay_) {
            day_ = calendar_.startOfDay(start);
            nextDay_ = calendar_.nextDay(start);
        }
        const int64_t chunk = byWeek_ ? weekOf(day_) : day_ + roundedDown(start - day_, seconds_);
        return std::exchange(chunk_, chunk) != chunk;
    }

private:
    /// The number of the week, which begins on a Monday, from a time that is the start of a local day.
    static int64_t weekOf(int64_t startOfDay) {
        constexpr int64_t noon = 12 * hourSeconds, day = 24 * hourSeconds, thursday = 3;
        return ((startOfDay + noon) / day + thursday) / 7; // time began on a Thursday
    }

    const Calendar& calendar_;
    int64_t seconds_ = 0;
    bool byWeek_ = false;
    int64_t day_ = 0, nextDay_ = 0;
    int64_t chunk_ = std::numeric_limits<int64_t>::min(); ///< start or number of the latest
};

} // namespace

double valueOf(const SystemMetrics& metrics, SystemLine line) {
    const double seconds = metrics.seconds;
    switch (line) {
    case SystemLine::cpu: return over(100 * metrics.cpuSeconds, seconds);
    case SystemLine::cpuPeak: return seconds > 0 ? metrics.peakCPUPercent : notMeasured;
    case SystemLine::memory: return over(metrics.memoryByteSeconds, seconds);
    case SystemLine::memoryPeak: return seconds > 0 ? real(metrics.peakMemoryBytes) : notMeasured;
    case SystemLine::diskRead: return over(real(metrics.diskReadBytes), seconds);
    case SystemLine::diskWritten: return over(real(metrics.diskWriteBytes), seconds);
    case SystemLine::received: return over(real(metrics.networkInBytes), seconds);
    case SystemLine::sent: return over(real(metrics.networkOutBytes), seconds);
    case SystemLine::power: return over(metrics.energyJoules, metrics.powerSeconds);
    }
    return notMeasured;
}

std::span<const AppLine> appLines(AppHistoryMetric metric) {
    static constexpr AppLine cpu[]{AppLine::cpu}, memory[]{AppLine::memory, AppLine::memoryPeak},
        disk[]{AppLine::diskRead, AppLine::diskWritten}, energy[]{AppLine::energy},
        network[]{AppLine::received, AppLine::sent};
    switch (metric) {
    case AppHistoryMetric::cpu: return cpu;
    case AppHistoryMetric::memory: return memory;
    case AppHistoryMetric::disk: return disk;
    case AppHistoryMetric::energy: return energy;
    case AppHistoryMetric::network: return network;
    }
    return {};
}

HistorySeries systemSeries(const HistoryAnswer& answer, std::span<const SystemLine> lines) {
    const Calendar calendar;
    const auto resolution = traits(answer.question.span).resolution;
    HistorySeries series;
    series.lines.resize(lines.size());
    SystemMetrics sum;
    Chunks chunks(answer.question.span, Chunks::Of::machine, calendar);
    for (const SystemPoint& point : answer.points) {
        const int64_t end = std::min(endOf(point.start, resolution, calendar), answer.to);
        if (chunks.begins(point.start)) {
            series.periods.push_back({point.start, end});
            for (auto& line : series.lines) line.push_back(notMeasured);
            sum = {};
        }
        mergeInto(sum, point.metrics);
        series.periods.back().to = end;
        for (size_t line = 0; line < lines.size(); ++line)
            series.lines[line].back() = valueOf(sum, lines[line]);
    }
    return series;
}

HistorySeries appSeries(const HistoryAnswer& answer, std::span<const AppLine> lines) {
    const Calendar calendar;
    HistorySeries series;
    series.lines.resize(lines.size());
    AppMetrics sum;
    double seconds = 0;
    Chunks chunks(answer.question.span, Chunks::Of::application, calendar);
    auto point = answer.appPoints.begin();
    auto observed = answer.points.begin();
    for (auto period : appPeriods(answer)) {
        while (observed != answer.points.end() && observed->start < period.from) ++observed;
        while (point != answer.appPoints.end() && point->start < period.from) ++point;
        const bool wasObserved = observed != answer.points.end() && observed->start < period.to;
        const bool wasThere = point != answer.appPoints.end() && point->start < period.to;
        if (!wasObserved && !wasThere) continue;
        period.to = std::min(period.to, answer.to);
        if (chunks.begins(period.from)) {
            series.periods.push_back(period);
            for (auto& line : series.lines) line.push_back(notMeasured);
            sum = {};
            seconds = 0;
        }
        if (wasThere) mergeInto(sum, point->metrics);
        seconds += static_cast<double>(period.to - period.from);
        series.periods.back().to = period.to;
        for (size_t line = 0; line < lines.size(); ++line)
            series.lines[line].back() = valueOf(sum, lines[line], seconds);
    }
    return series;
}

HistorySeries appSeries(std::span<const AppMinute> minutes, std::span<const AppLine> lines, int64_t now) {
    HistorySeries series;
    for (const AppMinute& minute : minutes)
        series.periods.push_back({minute.start, std::min(minute.start + minuteSeconds, now)});
    for (const AppLine line : lines) {
        auto& values = series.lines.emplace_back();
        for (const AppMinute& minute : minutes)
            values.push_back(valueOf(minute.metrics, line, minute.observed));
    }
    return series;
}

} // namespace quarn
