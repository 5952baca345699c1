// The applications of the live history as columns, and back.
#include "history/ArchiveCells.h"
#include "history/HistoryTime.h"

namespace quarn {

using namespace archive;

namespace {

using Column = ArchiveColumns::Column;

const AppMetrics noUse;

/// Calls visit(column name, field) for each field.
template <class Metrics, class Visit>
void visitUse(Metrics& metrics, const Visit& visit) {
    visit("seconds", metrics.seconds);
    visit("cpuSeconds", metrics.cpuSeconds);
    visit("memoryByteSeconds", metrics.memoryByteSeconds);
    visit("energyImpact", metrics.energyImpact);
    visit("energyJoules", metrics.energyJoules);
    visit("energySeconds", metrics.energySeconds);
    visit("peakMemoryBytes", metrics.peakMemoryBytes);
    visit("diskReadBytes", metrics.diskReadBytes);
    visit("diskWriteBytes", metrics.diskWriteBytes);
    visit("networkInBytes", metrics.networkInBytes);
    visit("networkOutBytes", metrics.networkOutBytes);
}

} // namespace

void ArchiveColumns::setApps(const AppLiveHistory& apps) {
    TextTable keys(appKeys);
    Column& index = columns["app.index"];
    Column& time = columns["app.time"];
    std::vector<Column*> targets;
    visitUse(noUse,
             [&](std::string_view name, const auto&) { targets.push_back(&columns[std::string(name)]); });
    for (const auto& minute : apps.minutes()) {
        for (const auto& use : minute.apps) {
            index.push_back(keys.placeOf(use.app));
            time.push_back(cellOf(minute.start));
            auto target = targets.begin();
            visitUse(use.metrics,
                     [&](std::string_view, const auto& field) { (*target++)->push_back(cellOf(field)); });
        }
    }
    appSamples = index.size();
    for (const auto& key : appKeys) {
        const auto name = apps.names().find(key);
        appNames.push_back(name == apps.names().end() ? std::string() : name->second);
    }
}

AppLiveHistory ArchiveColumns::apps() const {
    if (appSamples == 0) return {};
    require(appNames.size() == appKeys.size());
    AppLiveHistory::Names names;
    for (size_t i = 0; i < appKeys.size(); ++i)
        if (!appNames[i].empty()) names.emplace(appKeys[i], appNames[i]);

    const std::vector<Text> keys(appKeys.begin(), appKeys.end());
    const Column& index = column(*this, "app.index", appSamples);
    const Column& time = column(*this, "app.time", appSamples);
    std::vector<const Column*> sources;
    visitUse(noUse, [&](std::string_view name, const auto&) {
        sources.push_back(&column(*this, name, appSamples));
    });
    std::deque<AppLiveHistory::Minute> minutes;
    for (size_t i = 0; i < appSamples; ++i) {
        int64_t start = 0;
        takeCell(time[i], start);
        require(start % minuteSeconds == 0 && (minutes.empty() || start >= minutes.back().start));
        if (minutes.empty() || start != minutes.back().start) minutes.push_back({start, {}});
        auto& use = minutes.back().apps.emplace_back();
        use.app = keys[placeBelow(keys.size(), index[i])];
        auto source = sources.begin();
        visitUse(use.metrics, [&](std::string_view, auto& field) {
            const double cell = (**source++)[i];
            require(cell >= 0);
            takeCell(cell, field);
        });
    }
    return {std::move(minutes), std::move(names)};
}

} // namespace quarn
