#include "cli/HistoryCommand.h"

#include "cli/HistoryFields.h"
#include "cli/HistoryPlot.h"
#include "cli/Json.h"
#include "cli/TextTable.h"
#include "ui/modules/CalendarText.h"
#include "ui/modules/Format.h"
#include "ui/modules/HistoryText.h"
#include "ui/modules/LetterCase.h"
#include "ui/modules/Scale.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

namespace quarn::cli {

namespace {

constexpr int longestCellText = 4096;

/// How the values of a line are written and scaled.
struct Unit {
    std::string (*text)(double value);
    double (*top)(double greatest);
};

double binaryTop(double greatest) {
    const double unit = greatest >= 1 ? std::exp2(10 * std::floor(std::log2(greatest) / 10)) : 1;
    return niceTop(greatest / unit) * unit;
}
double percentTop(double greatest) { return std::max(niceTop(greatest), 1.0); }
std::string memoryText(double bytes) { return format::memory(static_cast<uint64_t>(bytes)); }
std::string sizeText(double bytes) { return format::diskSize(static_cast<uint64_t>(bytes)); }

namespace unit {
constexpr Unit percent{format::percent, percentTop}, memory{memoryText, binaryTop},
    rate{format::rate, niceTop}, size{sizeText, niceTop}, watts{format::watts, niceTop},
    score{format::threeDigits, niceTop};
} // namespace unit

struct SystemPlot {
    AppHistoryMetric kind;
    SystemLine line;
    std::optional<SystemLine> peak;
    std::string_view title;
    Unit unit;
};
constexpr std::array<SystemPlot, 7> systemPlots{{
    {AppHistoryMetric::cpu, SystemLine::cpu, SystemLine::cpuPeak, "CPU", unit::percent},
    {AppHistoryMetric::memory, SystemLine::memory, SystemLine::memoryPeak, "Memory", unit::memory},
    {AppHistoryMetric::disk, SystemLine::diskRead, {}, "Read from disks", unit::rate},
    {AppHistoryMetric::disk, SystemLine::diskWritten, {}, "Written to disks", unit::rate},
    {AppHistoryMetric::network, SystemLine::received, {}, "Received", unit::rate},
    {AppHistoryMetric::network, SystemLine::sent, {}, "Sent", unit::rate},
    {AppHistoryMetric::energy, SystemLine::power, {}, "Power", unit::watts},
}};

struct AppPlot {
    AppHistoryMetric kind;
    AppLine line;
    std::string_view title;
    Unit unit;
};
constexpr std::array<AppPlot, 7> appPlots{{
    {AppHistoryMetric::cpu, AppLine::cpu, "CPU, in shares of one core", unit::percent},
    {AppHistoryMetric::memory, AppLine::memory, "Memory", unit::memory},
    {AppHistoryMetric::disk, AppLine::diskRead, "Read from disks", unit::size},
    {AppHistoryMetric::disk, AppLine::diskWritten, "Written to disks", unit::size},
    {AppHistoryMetric::energy, AppLine::energy, "Energy score", unit::score},
    {AppHistoryMetric::network, AppLine::received, "Received", unit::size},
    {AppHistoryMetric::network, AppLine::sent, "Sent", unit::size},
}};

/// "CPU: at most 97.0 % (Tue 14 Oct, 15:04)" above the plot of line 0. Nothing where nothing was measured,
/// and no plot of nothing but zeros.
std::string plot(std::string_view title, const HistoryAnswer& answer, const HistorySeries& series,
                 size_t peakLine, const Unit& unit, HistoryLayout layout) {
    const auto& values = series.lines[peakLine];
    const auto less = [](double a, double b) { return std::isnan(a) ? !std::isnan(b) : a < b; };
    const auto peak = std::max_element(values.begin(), values.end(), less);
    if (peak == values.end() || std::isnan(*peak)) return {};
    if (*peak == 0) return fmt::format("\n{}: nothing\n", title);
    const auto& period = series.periods[static_cast<size_t>(peak - values.begin())];
    HistoryPlot plot{.from = answer.from, .to = answer.to, .columns = layout.columns};
    plot.charset = layout.charset;
    plot.top = unit.top;
    plot.mark = unit.text;
    return fmt::format("\n{}: at most {} ({})\n", title, unit.text(*peak),
                       fitted(periodText(period.from, period.to), longestCellText, layout.charset)) +
           plotText(plot, series, 0);
}

std::string safe(std::string_view text, HistoryLayout layout) {
    return fitted(text, longestCellText, layout.charset);
}

template <class T>
void write(JsonWriter& json, std::string_view name, const T& value) {
    json.key(name);
    writeJson(json, value, Known());
}

void beginAnswer(JsonWriter& json, const HistoryAnswer& answer) {
    json.beginObject();
    write(json, "range", traits(answer.question.span).id);
}

template <class Points>
void writePoints(JsonWriter& json, const Points& points) {
    json.key("points");
    json.beginArray();
    for (const auto& point : points) {
        json.beginObject();
        write(json, "start", point.start);
        Fields<std::decay_t<decltype(point.metrics)>>::each(
            point.metrics, Known(),
            [&](std::string_view name, const auto& value) { write(json, name, value); });
        json.endObject();
    }
    json.endArray();
}

void writeTotal(JsonWriter& json, const AppTotal& total) {
    write(json, "app", total.bundlePath);
    write(json, "name", appName(total));
    write(json, "total", total.metrics);
}

} // namespace

std::string seriesText(const HistoryAnswer& answer, std::optional<AppHistoryMetric> by,
                       HistoryLayout layout) {
    std::string text = safe(historySentence(answer), layout) + ".\n";
    for (const auto& each : systemPlots) {
        if (by && each.kind != *by) continue;
        const std::array lines{each.line, each.peak.value_or(each.line)};
        text += plot(each.title, answer, systemSeries(answer, lines), 1, each.unit, layout);
    }
    return text;
}

void writeSeries(JsonWriter& json, const HistoryAnswer& answer) {
    beginAnswer(json, answer);
    write(json, "from", answer.from);
    write(json, "to", answer.to);
    writePoints(json, answer.points);
    json.endObject();
    json.newline();
}

std::string topText(const HistoryAnswer& answer, HistoryLayout layout) {
    const auto& metric = traits(answer.question.by);
    const auto rows = appRankRows(answer);
    if (!(answer.total.seconds > 0)) return safe(historySentence(answer), layout) + ".\n";
    if (rows.empty())
        return fmt::format("{}: no application used any in {}.\n", metric.title,
                           lastSpan(answer.question.span));
    TextTable table({{"Application"}, {metric.amount, Align::right}, {"Before", Align::right}, {"Share"}},
                    layout.charset);
    constexpr int barCells = 20;
    for (const auto& row : rows) {
        const auto cells = static_cast<size_t>(std::lround(row.share * barCells));
        std::string bar;
        for (size_t i = 0; i < cells; ++i) bar += layout.charset == Charset::utf8 ? "█" : "#";
        table.add({row.name, row.amount, row.comparison, bar});
    }
    std::string text = table.text();
    if (answer.question.span == HistorySpan::hour)
        text += "Applications are kept by the hour; this is since " +
                safe(clockText(answer.to - answer.appPeriod), layout) + ".\n";
    if (answer.otherAppCount == 0) return text;
    text += fmt::format("and {} more", answer.otherAppCount);
    // Means of memory over different times do not add up.
    if (answer.question.by != AppHistoryMetric::memory)
        text += ", together " + safe(amountText(answer.otherApps, answer.question.by), layout);
    return text + "\n";
}

void writeTop(JsonWriter& json, const HistoryAnswer& answer) {
    beginAnswer(json, answer);
    write(json, "by", traits(answer.question.by).id);
    write(json, "period", answer.appPeriod);
    write(json, "periodBefore", answer.appPeriodBefore);
    json.key("apps");
    json.beginArray();
    for (const auto& app : answer.apps) {
        json.beginObject();
        writeTotal(json, app.total);
        write(json, "before", app.before);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    json.newline();
}

std::vector<AppTotal> appsNamed(std::vector<AppTotal> all, std::string_view name) {
    const auto keep = [&](const auto& fits) {
        std::vector<AppTotal> found;
        std::copy_if(all.begin(), all.end(), std::back_inserter(found), fits);
        rankApps(found, AppHistoryMetric::cpu, found.size());
        return found;
    };
    auto found = keep([&](const AppTotal& app) {
        return app.bundlePath == name || compareIgnoringCase(appName(app), name) == 0;
    });
    if (!found.empty()) return found;
    return keep([&](const AppTotal& app) { return containsIgnoringCase(appName(app), name); });
}

std::string appText(const HistoryAnswer& answer, HistoryLayout layout) {
    if (!answer.app) return {};
    std::string text =
        fmt::format("{}, {}\n", safe(appName(*answer.app), layout), lastSpan(answer.question.span));
    for (const auto& fact : appFacts(answer.app->metrics))
        text += fmt::format("  {:<20}{}\n", fact.name, safe(fact.value, layout));
    for (const auto& each : appPlots) {
        if (each.kind != answer.question.by) continue;
        text += plot(each.title, answer, appSeries(answer, std::array{each.line}), 0, each.unit, layout);
    }
    return text;
}

void writeApp(JsonWriter& json, const HistoryAnswer& answer) {
    beginAnswer(json, answer);
    write(json, "period", answer.appPeriod);
    if (answer.app) writeTotal(json, *answer.app);
    writePoints(json, answer.appPoints);
    json.endObject();
    json.newline();
}

std::string totalsText(const HistoryAnswer& answer, HistoryLayout layout) {
    std::string text = safe(historySentence(answer), layout) + ".\n";
    const auto totals = historyTotals(answer);
    if (totals.empty()) return text;
    TextTable table({{"Part"}, {"Total", Align::right}, {""}, {"Compared"}}, layout.charset);
    for (const auto& total : totals)
        table.add({Reading::title(total.kind), total.figure, total.meaning, total.comparison});
    return text + "\n" + table.text();
}

void writeTotals(JsonWriter& json, const HistoryAnswer& answer) {
    beginAnswer(json, answer);
    write(json, "from", answer.from);
    write(json, "to", answer.to);
    write(json, "total", answer.total);
    write(json, "before", answer.before);
    json.endObject();
    json.newline();
}

std::string totalsText(const RecentSystemTotals& totals, HistoryLayout layout) {
    TextTable table(
        {{""}, {"Today", Align::right}, {"Last 7 days", Align::right}, {"Last 30 days", Align::right}},
        layout.charset);
    const std::array all{&totals.today, &totals.lastWeek, &totals.lastMonth};
    const auto row = [&](const char* title, const auto& textOf) {
        std::vector<std::string> cells{title};
        for (const auto* metrics : all) cells.push_back(metrics->seconds > 0 ? textOf(*metrics) : "—");
        table.add(std::move(cells));
    };
    const auto bytes = [](auto member) {
        return
            [member](const SystemMetrics& metrics) { return sizeText(static_cast<double>(metrics.*member)); };
    };
    row("Recorded", [](const SystemMetrics& metrics) { return format::duration(metrics.seconds); });
    row("CPU on average",
        [](const SystemMetrics& metrics) { return format::percent(valueOf(metrics, SystemLine::cpu)); });
    row("CPU at most", [](const SystemMetrics& metrics) { return format::percent(metrics.peakCPUPercent); });
    row("Memory on average",
        [](const SystemMetrics& metrics) { return memoryText(valueOf(metrics, SystemLine::memory)); });
    row("Memory at most", [](const SystemMetrics& metrics) {
        return memoryText(static_cast<double>(metrics.peakMemoryBytes));
    });
    row("Read from disks", bytes(&SystemMetrics::diskReadBytes));
    row("Written to disks", bytes(&SystemMetrics::diskWriteBytes));
    row("Received", bytes(&SystemMetrics::networkInBytes));
    row("Sent", bytes(&SystemMetrics::networkOutBytes));
    row("Energy", [](const SystemMetrics& metrics) {
        return metrics.powerSeconds > 0 ? format::energy(metrics.energyJoules) : std::string(format::unknown);
    });
    return table.text();
}

void writeTotals(JsonWriter& json, const RecentSystemTotals& totals) {
    json.beginObject();
    write(json, "today", totals.today);
    write(json, "lastWeek", totals.lastWeek);
    write(json, "lastMonth", totals.lastMonth);
    json.endObject();
    json.newline();
}

} // namespace quarn::cli
