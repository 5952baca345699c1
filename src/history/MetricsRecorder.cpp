#include "history/MetricsRecorder.h"

#include "core/SystemEvents.h"
#include "history/HistoryTime.h"
#include "monitor/Throttled.h"
#include "ui/settings/Prefs.h"

namespace quarn {

namespace {

using namespace std::chrono_literals;

constexpr auto betweenWrites = 60s;
constexpr auto writeLeeway = 5s;

MetricsStoreKeeper::Setup keeperSetup(const MetricsRecorderSetup& setup,
                                      std::function<void(const HistoryStatus&)> statusChanged) {
    const auto openFile = [file = setup.file](MetricsStore::Access access) {
        return std::make_unique<MetricsStore>(file, access);
    };
    return {setup.file, setup.openStore ? setup.openStore : openFile, setup.steadySeconds,
            std::move(statusChanged)};
}

} // namespace

double MetricsRecorderSetup::secondsSinceBoot() { return quarn::steadySeconds() + asleepSeconds(); }

MetricsRecorder::MetricsRecorder(MetricsRecorderSetup setup)
    : setup_(std::move(setup)), keeper_(keeperSetup(setup_, [this](const HistoryStatus& status) {
          status_.set(status);
          if (setup_.statusChanged) setup_.statusChanged(status);
      })) {}

MetricsRecorder::~MetricsRecorder() {
    sleepObservers_.reset();
    setup_.queue.sync([this] {
        preference_.reset();
        if (isRecording_) writePending();
        setup_.statusChanged = {};
        setRecording(false);
        alive_.reset(); // whatever is still posted finds nobody
    });
}

void MetricsRecorder::start(bool enabled) {
    preference_ =
        setup_.prefs.d.observe(setup_.queue, [this] { setRecording(setup_.prefs.saveMetricsHistory.get()); });
    if (setup_.sleepNotices == MetricsRecorderSetup::SleepNotices::fromSystem)
        sleepObservers_ = std::make_unique<sysinfo::SystemEvents>(sysinfo::SystemEvents::Handlers{
            .wokeUp = [this] { didWake(); }, .goingToSleep = [this] { willSleep(); }});
    post([this, enabled] { setRecording(enabled); });
}

void MetricsRecorder::setRecording(bool recording) {
    if (recording == isRecording_) return;
    accumulator_.set({});
    timer_.reset();
    timerBegun_ = false;
    isRecording_ = recording;
    if (!recording) return keeper_.end();
    keeper_.begin();
    timer_ = setup_.queue.every(betweenWrites, writeLeeway, [this] {
        if (std::exchange(timerBegun_, true))
            writePending(); // a timer begins at once, and there is nothing yet
    });
}

void MetricsRecorder::record(const Snapshot& snapshot) {
    if (!isRecording_) return;
    const MetricsSample sample(snapshot);
    accumulator_.withValue([&](MetricsAccumulator& accumulator) { accumulator.add(sample); });
}

void MetricsRecorder::addApps(WallTime at, std::span<const AppActivity> apps) {
    if (!isRecording_) return;
    const bool unnamed = accumulator_.withValue([&](MetricsAccumulator& accumulator) {
        accumulator.addUnnamed(at, apps);
        return !accumulator.unnamedApps().empty();
    });
    if (unnamed) post([this] { resolveNames(); });
}

void MetricsRecorder::add(std::span<const AppTraffic> networkGrowth, WallTime from, WallTime to) {
    if (!isRecording_) return;
    accumulator_.withValue(
        [&](MetricsAccumulator& accumulator) { accumulator.addUnnamed(networkGrowth, from, to); });
}

/// Looks for names without holding the lock, since that may take a while.
void MetricsRecorder::resolveNames() {
    if (!setup_.nameOf) return;
    const auto unnamed = accumulator_.withValue(
        [](const MetricsAccumulator& accumulator) { return accumulator.unnamedApps(); });
    MetricsAccumulator::Names names;
    for (const auto& app : unnamed) names.emplace(app, setup_.nameOf(app));
    accumulator_.withValue([&](MetricsAccumulator& accumulator) { accumulator.name(names); });
}

void MetricsRecorder::writePending() {
    resolveNames();
    const auto batch =
        accumulator_.withValue([](MetricsAccumulator& accumulator) { return accumulator.drain(); });
    keeper_.write(batch, setup_.now());
}

void MetricsRecorder::flush(Wait wait) {
    const auto write = [this] {
        if (isRecording_) writePending();
    };
    if (wait == Wait::yes)
        setup_.queue.sync(write);
    else
        post(write);
}

void MetricsRecorder::willSleep() { flush(Wait::no); }

void MetricsRecorder::didWake() {
    accumulator_.withValue([](MetricsAccumulator& accumulator) { accumulator.forgetReferences(); });
}

void MetricsRecorder::clear(std::function<void(std::optional<std::string>)> completion) {
    post([this, completion = std::move(completion)] {
        std::optional<std::string> problem;
        accumulator_.set({});
        try {
            keeper_.clear();
        } catch (const std::exception& error) {
            problem = error.what();
        }
        if (!isRecording_) keeper_.end(); // it was opened for this only
        if (completion) completion(std::move(problem));
    });
}

template <class T, class Ask>
MetricsRead<T> MetricsRecorder::read(const Ask& ask) {
    using State = typename MetricsRead<T>::State;
    if (!isRecording_) return {State::off, {}};
    auto values = keeper_.read(ask);
    return {values ? State::values : State::failed, std::move(values)};
}

void MetricsRecorder::systemSeries(TopAppsRange over, Completion<MetricsRead<SystemSeriesRead>> completion) {
    post([this, over, completion = std::move(completion)] {
        const bool fine = over == TopAppsRange::hour || over == TopAppsRange::day;
        const int64_t now = unixSeconds(setup_.now()), to = now + 1;
        const int64_t from = roundedDown(now - spanSeconds(over), fine ? minuteSeconds : hourSeconds);
        completion(read<SystemSeriesRead>([&](MetricsStore& store) {
            const auto resolution = fine ? MetricsResolution::minute : MetricsResolution::hour;
            return SystemSeriesRead{store.systemPoints(resolution, from, to), from, to};
        }));
    });
}

void MetricsRecorder::topApps(TopAppsRange over, AppHistoryMetric by, size_t limit,
                              Completion<std::optional<TopAppsRead>> completion) {
    post([this, over, by, limit, completion = std::move(completion)] {
        const int64_t now = unixSeconds(setup_.now());
        const int64_t from = roundedDown(now - spanSeconds(over), hourSeconds);
        completion(read<TopAppsRead>([&](MetricsStore& store) {
                       TopAppsRead result{store.appTotals(from, now + 1), now - from};
                       rankApps(result.apps, by, limit);
                       return result;
                   }).values);
    });
}

void MetricsRecorder::appSeries(std::string appId, TopAppsRange over,
                                Completion<std::optional<std::vector<AppPoint>>> completion) {
    post([this, appId = std::move(appId), over, completion = std::move(completion)] {
        const int64_t now = unixSeconds(setup_.now());
        const int64_t from = roundedDown(now - spanSeconds(over), hourSeconds);
        const auto step = over == TopAppsRange::month ? MetricsStore::AppSeriesStep::byDay
                                                      : MetricsStore::AppSeriesStep::byHour;
        completion(read<std::vector<AppPoint>>([&](MetricsStore& store) {
                       return store.appSeries(appId, from, now + 1, step);
                   }).values);
    });
}

void MetricsRecorder::recentTotals(Completion<std::optional<RecentSystemTotals>> completion) {
    post([this, completion = std::move(completion)] {
        completion(read<RecentSystemTotals>([&](MetricsStore& store) {
                       return store.recentTotals(setup_.now());
                   }).values);
    });
}

void MetricsRecorder::ask(HistoryQuestion question, Completion<MetricsRead<HistoryAnswer>> completion) {
    post([this, question = std::move(question), completion = std::move(completion)] {
        completion(read<HistoryAnswer>(
            [&](MetricsStore& store) { return readHistory(store, question, setup_.now()); }));
    });
}

void MetricsRecorder::post(std::function<void()> work) {
    setup_.queue.async([alive = std::weak_ptr(alive_), work = std::move(work)] {
        if (alive.lock()) work();
    });
}

} // namespace quarn
