#include "ui/modules/HistoryText.h"

#include "core/AppOwnerIndex.h"
#include "ui/modules/CalendarText.h"
#include "ui/modules/Format.h"
#include "ui/modules/HistorySeries.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace quarn {

namespace {

constexpr double twice = 1.95; ///< from here on a factor says more than a percentage

std::string_view nameOf(HistorySpan span) {
    constexpr std::array<std::string_view, historySpans.size()> names{"hour",  "day",  "week",
                                                                      "month", "year", "two years"};
    return names[static_cast<size_t>(span)];
}

uint64_t bytes(double count) { return static_cast<uint64_t>(std::max(count, 0.0)); }
std::string sizeText(int64_t count) {
    return format::diskSize(static_cast<uint64_t>(std::max<int64_t>(count, 0)));
}

/// How far `now` is from `before`, in whole percent; nothing from twice as much on.
std::optional<int> percentChange(double now, double before) {
    const double ratio = now / before;
    if (ratio >= twice) return {};
    return static_cast<int>(std::lround(100 * (ratio - 1)));
}

double bytesBoth(int64_t one, int64_t other) { return static_cast<double>(one) + static_cast<double>(other); }

HistoryTotal twoWays(WidgetKind kind, int64_t in, int64_t out, std::string_view inWord,
                     std::string_view outWord) {
    return {kind,
            format::diskSize(bytes(bytesBoth(in, out))),
            fmt::format("{} {}, {} {}", sizeText(in), inWord, sizeText(out), outWord),
            {}};
}

std::string_view wordOf(AppHistoryMetric metric) {
    switch (metric) {
    case AppHistoryMetric::cpu: return "CPU";
    case AppHistoryMetric::memory: return "memory";
    case AppHistoryMetric::disk: return "of the disks";
    case AppHistoryMetric::energy: return "energy";
    case AppHistoryMetric::network: return "of the network";
    }
    return {};
}

/// What reads as more than nothing.
double leastAmount(AppHistoryMetric metric) { return metric == AppHistoryMetric::cpu ? 0.01 : 1; }

/// How much of a span must have been recorded to speak of all of it.
constexpr double nearlyAll = 0.97;

} // namespace

std::string lastSpan(HistorySpan span) { return fmt::format("the last {}", nameOf(span)); }

std::string appSpan(const HistoryAnswer& answer) {
    if (answer.question.span != HistorySpan::hour) return "in " + lastSpan(answer.question.span);
    return "since " + clockText(answer.to - answer.appPeriod);
}

HistorySpan spanOf(TopAppsRange range) { return static_cast<HistorySpan>(range); }

std::optional<TopAppsRange> rangeOf(HistorySpan span) {
    if (span > HistorySpan::month) return {};
    return static_cast<TopAppsRange>(span);
}

std::string comparison(double now, double before, HistorySpan span) {
    if (!(now >= 0) || !(before >= 0) || (now == 0 && before == 0)) return {};
    const std::string former = fmt::format("the {} before", nameOf(span));
    if (before == 0) return "nothing " + former;
    const auto change = percentChange(now, before);
    if (!change) return fmt::format("{} times {}", format::threeDigits(now / before), former);
    if (*change == 0) return "as much as " + former;
    return fmt::format("{} % {} than {}", std::abs(*change), *change > 0 ? "more" : "less", former);
}

std::string shortComparison(double now, double before) {
    if (!(now > 0) || !(before >= 0)) return {};
    if (before == 0) return "new";
    const auto change = percentChange(now, before);
    if (!change) return fmt::format("× {}", format::threeDigits(now / before));
    return fmt::format("{}{} %", *change > 0 ? "+" : *change < 0 ? "−" : "±", std::abs(*change));
}

bool areComparable(double observed, double observedBefore) {
    return std::min(observed, observedBefore) > 0 &&
           std::min(observed, observedBefore) * 2 >= std::max(observed, observedBefore);
}

std::vector<HistoryTotal> historyTotals(const HistoryAnswer& answer) {
    const SystemMetrics &total = answer.total, &before = answer.before;
    const HistorySpan span = answer.question.span;
    std::vector<HistoryTotal> totals;
    if (!(total.seconds > 0)) return totals;
    const double cpu = valueOf(total, SystemLine::cpu), memory = valueOf(total, SystemLine::memory);
    totals.push_back({WidgetKind::cpu,
                      format::percent(cpu),
                      fmt::format("on average, {} at most", format::percent(total.peakCPUPercent)),
                      {}});
    totals.push_back({WidgetKind::memory,
                      format::memory(bytes(memory)),
                      fmt::format("on average, {} at most",
                                  format::memory(bytes(static_cast<double>(total.peakMemoryBytes)))),
                      {}});
    totals.push_back(twoWays(WidgetKind::disk, total.diskReadBytes, total.diskWriteBytes, "read", "written"));
    totals.push_back(
        twoWays(WidgetKind::network, total.networkInBytes, total.networkOutBytes, "received", "sent"));
    if (areComparable(total.seconds, before.seconds)) {
        totals[0].comparison = comparison(cpu, valueOf(before, SystemLine::cpu), span);
        totals[1].comparison = comparison(memory, valueOf(before, SystemLine::memory), span);
        totals[2].comparison = comparison(bytesBoth(total.diskReadBytes, total.diskWriteBytes),
                                          bytesBoth(before.diskReadBytes, before.diskWriteBytes), span);
        totals[3].comparison = comparison(bytesBoth(total.networkInBytes, total.networkOutBytes),
                                          bytesBoth(before.networkInBytes, before.networkOutBytes), span);
    }
    if (total.powerSeconds > 0) {
        totals.push_back({WidgetKind::power,
                          format::energy(total.energyJoules),
                          fmt::format("{} on average", format::watts(valueOf(total, SystemLine::power))),
                          {}});
        if (areComparable(total.powerSeconds, before.powerSeconds))
            totals.back().comparison = comparison(total.energyJoules, before.energyJoules, span);
    }
    return totals;
}

std::string amountText(const AppMetrics& metrics, AppHistoryMetric metric) {
    const double amount = rankOf(metrics, metric);
    switch (metric) {
    case AppHistoryMetric::cpu: return format::duration(amount);
    case AppHistoryMetric::memory: return format::memory(bytes(amount));
    case AppHistoryMetric::disk:
    case AppHistoryMetric::network: return format::diskSize(bytes(amount));
    case AppHistoryMetric::energy: return format::count(amount);
    }
    return {};
}

std::string amountSentence(const AppMetrics& metrics, AppHistoryMetric metric) {
    std::string amount = amountText(metrics, metric);
    switch (metric) {
    case AppHistoryMetric::cpu: return amount + " of one core";
    case AppHistoryMetric::memory: return amount + " on average";
    case AppHistoryMetric::disk:
        return fmt::format("{} read, {} written", sizeText(metrics.diskReadBytes),
                           sizeText(metrics.diskWriteBytes));
    case AppHistoryMetric::energy: return "a score of " + amount;
    case AppHistoryMetric::network:
        return fmt::format("{} received, {} sent", sizeText(metrics.networkInBytes),
                           sizeText(metrics.networkOutBytes));
    }
    return amount;
}

std::string_view appName(const AppTotal& app) {
    return app.metrics.name.empty() ? sysinfo::executableName({}, app.bundlePath)
                                    : std::string_view(app.metrics.name);
}

std::vector<AppRankRow> appRankRows(const HistoryAnswer& answer) {
    const AppHistoryMetric by = answer.question.by;
    // Applications are kept for a shorter time than the machine: where none is known of before, none is new.
    const bool compares = areComparable(answer.total.seconds, answer.before.seconds) &&
                          answer.appPeriod > 0 && answer.appPeriodBefore > 0 &&
                          std::any_of(answer.apps.begin(), answer.apps.end(),
                                      [](const AppRank& app) { return app.before.has_value(); });
    // Means compare as they are, sums by what they would be over as long a time.
    const double before = by == AppHistoryMetric::memory
                              ? 1
                              : static_cast<double>(answer.appPeriod) /
                                    static_cast<double>(std::max<int64_t>(answer.appPeriodBefore, 1));
    const double greatest = answer.apps.empty() ? 0 : rankOf(answer.apps.front().total.metrics, by);
    std::vector<AppRankRow> rows;
    for (const AppRank& app : answer.apps) {
        const double amount = rankOf(app.total.metrics, by);
        if (amount < leastAmount(by)) break; // the rest did nothing of the kind
        AppRankRow row{app.total.bundlePath,
                       std::string(appName(app.total)),
                       amountText(app.total.metrics, by),
                       {},
                       amount / greatest};
        if (compares)
            row.comparison = shortComparison(amount, app.before ? before * rankOf(*app.before, by) : 0);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<Fact> appFacts(const AppMetrics& metrics) {
    std::vector<Fact> facts{
        {"CPU time", format::duration(metrics.cpuSeconds), {}},
        {"Memory on average", format::memory(bytes(rankOf(metrics, AppHistoryMetric::memory))), {}},
        {"Memory at most", format::memory(bytes(static_cast<double>(metrics.peakMemoryBytes))), {}},
        {"Read from disks", sizeText(metrics.diskReadBytes), {}},
        {"Written to disks", sizeText(metrics.diskWriteBytes), {}}};
    if (metrics.networkInBytes > 0 || metrics.networkOutBytes > 0) {
        facts.push_back({"Received", sizeText(metrics.networkInBytes), {}});
        facts.push_back({"Sent", sizeText(metrics.networkOutBytes), {}});
    }
    if (metrics.energySeconds > 0) facts.push_back({"Energy", format::energy(metrics.energyJoules), {}});
    facts.push_back({"Energy score", format::count(metrics.energyImpact), {}});
    facts.push_back({"It ran for", format::duration(metrics.seconds), {}});
    return facts;
}

std::string_view whyNoHistory(MetricsRead<HistoryAnswer>::State state) {
    using State = MetricsRead<HistoryAnswer>::State;
    switch (state) {
    case State::values: return {};
    case State::off: return "The history is not being recorded";
    case State::failed: return "The history could not be read";
    }
    return {};
}

std::string historySentence(const HistoryAnswer& answer) {
    const HistorySpan span = answer.question.span;
    const double seconds = answer.total.seconds;
    if (!(seconds > 0)) return fmt::format("Nothing was recorded in {}", lastSpan(span));
    std::string text = seconds >= nearlyAll * static_cast<double>(traits(span).seconds)
                           ? fmt::format("All of {} was recorded", lastSpan(span))
                           : fmt::format("{} of {} were recorded", format::duration(seconds), lastSpan(span));
    const AppHistoryMetric by = answer.question.by;
    if (answer.apps.empty() || rankOf(answer.apps.front().total.metrics, by) < leastAmount(by)) return text;
    const AppTotal& first = answer.apps.front().total;
    text +=
        fmt::format("; {} used most {}, {}", appName(first), wordOf(by), amountSentence(first.metrics, by));
    return span == HistorySpan::hour ? text + " " + appSpan(answer) : text;
}

} // namespace quarn
