// The long-term history: what a tick, a minute and a page's question cost over a full year's database of 300
// applications. Prints the size of a row first.
#include "history/HistoryReads.h"
#include "history/MetricsAccumulator.h"
#include "history/MetricsStore.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include <fmt/format.h>

namespace {

using namespace quarn;

constexpr int apps = 300;
constexpr int64_t day = 86'400;
constexpr int64_t now = 1'790'000'000 - 1'790'000'000 % day + 15 * hourSeconds;

std::mt19937_64 random(1);

double upTo(double most) { return std::uniform_real_distribution<double>(0, most)(random); }
int64_t bytesUpTo(double most) { return static_cast<int64_t>(upTo(most)); }

std::string appId(int number) { return fmt::format("/usr/share/applications/app-{:03}", number); }

SystemMetrics busyMinute() {
    return {60,
            upTo(60),
            upTo(100),
            60 * upTo(16e9),
            bytesUpTo(16e9),
            bytesUpTo(1e9),
            bytesUpTo(1e8),
            bytesUpTo(1e8),
            bytesUpTo(1e7),
            bytesUpTo(1e7),
            60 * upTo(40),
            60};
}

/// Most applications are idle, as on a machine that is used.
AppMetrics appHour(int number) {
    AppMetrics app;
    app.name = fmt::format("Application {}", number);
    app.seconds = 3600 - upTo(0.01);
    app.memoryByteSeconds = app.seconds * upTo(1e9);
    app.peakMemoryBytes = bytesUpTo(1e9);
    if (number % 4 != 0) return app;
    app.cpuSeconds = upTo(1000);
    app.diskReadBytes = bytesUpTo(1e8);
    app.diskWriteBytes = bytesUpTo(1e8);
    app.energyImpact = upTo(1e5);
    app.networkInBytes = bytesUpTo(1e7);
    app.networkOutBytes = bytesUpTo(1e7);
    return app;
}

MetricsBatch::Apps allApps() {
    MetricsBatch::Apps hour;
    for (int number = 0; number < apps; ++number) hour[appId(number)] = appHour(number);
    return hour;
}

/// A database of a year, removed at the end.
class Year {
public:
    Year() : folder_(makeFolder()), file(folder_ / "metrics.sqlite") {
        MetricsStore store(file);
        for (int64_t time = now - 365 * day; time < now; time += hourSeconds) {
            const int64_t age = now - time;
            // One hour stands for a day whose hours are deleted by now.
            if (age > 32 * day && time / hourSeconds % 24 != 0) continue;
            MetricsBatch batch;
            batch.apps[time] = allApps();
            const int step = age > 8 * day ? 60 : 1;
            for (int minute = 0; minute < 60; minute += step) batch.system[time + minute * 60] = busyMinute();
            store.write(batch);
            if (time % day == 0) store.maintain(wallTime(time));
        }
        store.maintain(wallTime(now));
        store.vacuum(wallTime(now));
    }
    ~Year() { std::filesystem::remove_all(folder_); }

    void printSizes() const {
        SQLiteConnection db(file.string(), SQLiteConnection::Access::reading);
        for (const auto& table : metricsTables) {
            const auto bytes = db.integer("SELECT SUM(pgsize) FROM dbstat WHERE name = ?", {table.name});
            const auto rows = db.integer(fmt::format("SELECT COUNT(*) FROM {}", table.name));
            std::printf("%-10s %7ld rows, %5.1f bytes a row\n", table.name.data(), static_cast<long>(*rows),
                        static_cast<double>(*bytes) / static_cast<double>(*rows));
        }
        std::printf("%.1f MB in all\n", static_cast<double>(std::filesystem::file_size(file)) / 1e6);
    }

private:
    static std::filesystem::path makeFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "quarn-bench-XXXXXX").string();
        return ::mkdtemp(pattern.data());
    }

    std::filesystem::path folder_;

public:
    const std::filesystem::path file;
};

const Year* year = nullptr;

void tick(benchmark::State& state) {
    MetricsAccumulator accumulator;
    std::vector<AppActivity> list(apps);
    for (int number = 0; number < apps; ++number)
        list[static_cast<size_t>(number)] = {
            appId(number), 100'000'000, {1'000'000, 4096, 4096, 10, 0, false}};
    MetricsSample sample;
    sample.time = wallTime(now);
    for (auto _ : state) {
        sample.time += std::chrono::seconds(1);
        sample.diskRead += 1000;
        accumulator.add(sample);
        accumulator.addUnnamed(sample.time, list);
    }
}
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

void open(benchmark::State& state) {
    for (auto _ : state) MetricsStore store(year->file);
}
BENCHMARK(open)->Unit(benchmark::kMillisecond);

void writeMinute(benchmark::State& state) {
    MetricsStore store(year->file);
    MetricsBatch batch;
    batch.apps[now] = allApps();
    int64_t minute = now;
    for (auto _ : state) {
        batch.system = {{minute, busyMinute()}};
        store.write(batch);
        if ((minute += 60) == now + hourSeconds) minute = now;
    }
}
BENCHMARK(writeMinute)->Unit(benchmark::kMillisecond);

void maintainHour(benchmark::State& state) {
    MetricsStore store(year->file);
    for (auto _ : state) store.maintain(wallTime(now));
}
BENCHMARK(maintainHour)->Unit(benchmark::kMillisecond);

template <class Ask>
void question(benchmark::State& state, const Ask& ask) {
    MetricsStore store(year->file);
    for (auto _ : state) benchmark::DoNotOptimize(ask(store));
}
constexpr int64_t month = 30 * day;
BENCHMARK_CAPTURE(question, rankMonth, [](MetricsStore& store) {
    auto totals = store.appTotals(now - month, now + 1);
    rankApps(totals, AppHistoryMetric::cpu, 10);
    return totals.size();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, rankDay, [](MetricsStore& store) {
    return store.appTotals(now - day, now + 1).size();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, dayByMinutes, [](MetricsStore& store) {
    return store.systemPoints(MetricsResolution::minute, now - day, now + 1).size();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, monthByHours, [](MetricsStore& store) {
    return store.systemPoints(MetricsResolution::hour, now - month, now + 1).size();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, recentTotals, [](MetricsStore& store) {
    return store.recentTotals(wallTime(now)).today.seconds;
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, appWeekByHours, [](MetricsStore& store) {
    return store.appSeries(appId(7), now - 7 * day, now + 1, MetricsStore::AppSeriesStep::byHour).size();
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(question, appMonthByDays, [](MetricsStore& store) {
    return store.appSeries(appId(7), now - month, now + 1, MetricsStore::AppSeriesStep::byDay).size();
})->Unit(benchmark::kMillisecond);

/// All that the page of the history, or a command, asks at one time.
void page(benchmark::State& state) {
    MetricsStore store(year->file);
    const HistoryQuestion question{static_cast<HistorySpan>(state.range(0)), AppHistoryMetric::cpu, 10,
                                   appId(7)};
    for (auto _ : state) benchmark::DoNotOptimize(readHistory(store, question, wallTime(now)).apps.size());
    state.SetLabel(std::string(traits(question.span).id));
}
BENCHMARK(page)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int count, char** arguments) {
    const Year made;
    year = &made;
    made.printSizes();
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
