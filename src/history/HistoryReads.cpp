#include "history/HistoryReads.h"

#include "history/HistoryTime.h"
#include "history/MetricsColumns.h"
#include "history/MetricsStore.h"

#include <algorithm>

namespace quarn {

namespace {

void readMachine(MetricsStore& store, HistoryAnswer& answer, int64_t now) {
    const auto& span = traits(answer.question.span);
    const int64_t step = span.resolution == MetricsResolution::minute ? minuteSeconds : hourSeconds;
    answer.to = now + 1;
    answer.from = roundedDown(now - span.seconds, step);
    answer.points = store.systemPoints(span.resolution, answer.from, answer.to);
    answer.total = store.systemTotals(answer.from, answer.to);
    answer.before = store.systemTotals(answer.from - span.seconds, answer.from);
}

/// The totals are in order of their keys.
const AppMetrics* find(const std::vector<AppTotal>& totals, const std::string& app) {
    const auto found =
        std::lower_bound(totals.begin(), totals.end(), app,
                         [](const AppTotal& each, const std::string& key) { return each.bundlePath < key; });
    return found != totals.end() && found->bundlePath == app ? &found->metrics : nullptr;
}

void rank(HistoryAnswer& answer, std::vector<AppTotal> totals, const std::vector<AppTotal>& before) {
    rankApps(totals, answer.question.by, totals.size());
    for (auto& total : totals) {
        if (answer.apps.size() == answer.question.limit) {
            mergeInto(answer.otherApps, total.metrics);
            ++answer.otherAppCount;
            continue;
        }
        const AppMetrics* former = find(before, total.bundlePath);
        answer.apps.push_back({std::move(total), former ? std::optional(*former) : std::nullopt});
    }
}

void readApps(MetricsStore& store, HistoryAnswer& answer, int64_t now) {
    const auto& [span, by, limit, app] = answer.question;
    const int64_t from = roundedDown(now - traits(span).seconds, hourSeconds), to = now + 1;
    auto totals = store.appTotals(from, to);
    answer.appPeriod = to - from;
    answer.appPeriodBefore = traits(span).seconds;
    if (!app.empty()) {
        if (const AppMetrics* total = find(totals, app)) answer.app = AppTotal{app, *total};
        const auto step = span >= HistorySpan::month ? MetricsStore::AppSeriesStep::byDay
                                                     : MetricsStore::AppSeriesStep::byHour;
        answer.appPoints = store.appSeries(app, from, to, step);
    }
    rank(answer, std::move(totals), store.appTotals(from - answer.appPeriodBefore, from));
}

} // namespace

HistoryAnswer readHistory(MetricsStore& store, const HistoryQuestion& question, WallTime now) {
    HistoryAnswer answer;
    answer.question = question;
    readMachine(store, answer, unixSeconds(now));
    readApps(store, answer, unixSeconds(now));
    return answer;
}

} // namespace quarn
