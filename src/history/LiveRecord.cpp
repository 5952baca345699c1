#include "history/LiveRecord.h"

#include "HelperKit/Log.h"
#include "HelperKit/ReplaceFile.h"
#include "history/HistoryTime.h"

#include <fcntl.h>
#include <system_error>

#include <fmt/format.h>

namespace quarn {

namespace {

using namespace std::chrono_literals;

constexpr auto betweenSaves = 5min;
constexpr auto saveLeeway = 10s;

/// nullopt when there is no such file; throws std::system_error.
std::optional<Data> readFile(const std::filesystem::path& file) {
    const auto failed = [&] { return std::system_error(errno, std::generic_category(), file.string()); };
    const scutil::UniqueFd fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!fd && errno == ENOENT) return {};
    if (!fd) throw failed();
    Data data;
    for (;;) {
        constexpr size_t step = 1 << 20;
        const size_t size = data.size();
        data.resize(size + step);
        const ssize_t count = ::read(fd.get(), data.data() + size, step);
        if (count < 0 && errno != EINTR) throw failed();
        data.resize(size + static_cast<size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0 || data.size() > HistoryArchive::mostBytes) return data;
    }
}

std::string_view textOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

} // namespace

std::optional<HistoryArchive::Content> readArchive(const std::filesystem::path& file) {
    const auto data = readFile(file);
    if (!data) return {};
    auto decoded = HistoryArchive::decode(*data);
    if (auto* content = std::get_if<HistoryArchive::Content>(&decoded)) return std::move(*content);
    throw std::runtime_error(file.string() + ": it is no history that this version can read");
}

LiveRecord::LiveRecord(LiveRecordSetup setup) : setup_(std::move(setup)), recorder_(setup_.queue) {}

LiveRecord::~LiveRecord() {
    flush();
    setup_.queue.sync([this] { timer_.reset(); });
}

void LiveRecord::flush() {
    setup_.queue.sync([this] {
        if (timer_) save();
    });
}

void LiveRecord::begin() {
    if (setup_.file.empty()) return; // a user without a home folder
    restore(setup_.now());
    timer_ = setup_.queue.every(betweenSaves, saveLeeway, [this] {
        if (std::exchange(timerBegun_, true)) save(); // a timer begins at once
    });
}

void LiveRecord::add(const Snapshot& snapshot, std::span<const SensorGroups::Maximum> maxima) {
    last_ = std::make_shared<const HistorySample>(snapshot, top_.update(snapshot), maxima, last_.get());
    kept_.withValue([&](Kept& kept) { kept.store.append(last_, setup_.now()); });
    recorder_.record(last_);
}

void LiveRecord::addApps(WallTime at, std::span<const AppActivity> activity) {
    const auto unnamed = apps_.withValue([&](AppLiveHistory& apps) {
        apps.add(at, activity);
        return apps.unnamedApps();
    });
    if (unnamed.empty() || !setup_.nameOf) return;
    AppLiveHistory::Names names; // looked for without the lock, since that may take a while
    for (const auto& app : unnamed) names.emplace(app, setup_.nameOf(app));
    apps_.withValue([&](AppLiveHistory& apps) { apps.name(names); });
}

std::vector<SharedSample> LiveRecord::samples() const {
    return kept_.withValue([](const Kept& kept) { return kept.store.samples(); });
}

std::vector<HistoryBreak> LiveRecord::breaks() const {
    auto [breaks, duration] =
        kept_.withValue([](const Kept& kept) { return std::pair(kept.earlierBreaks, kept.store.duration); });
    if (setup_.breaks)
        for (const HistoryBreak& each : setup_.breaks()) breaks.push_back(each);
    const double cutoff = epochSeconds(setup_.now()) - duration;
    std::erase_if(breaks, [&](const HistoryBreak& each) { return each.second < cutoff; });
    return breaks;
}

std::vector<AppTotal> LiveRecord::topApps(AppHistoryMetric metric, size_t limit) const {
    return apps_.withValue(
        [&](const AppLiveHistory& apps) { return apps.totals(setup_.now(), metric, limit); });
}

std::vector<AppMinute> LiveRecord::minutesOf(std::string_view app) const {
    return apps_.withValue([&](const AppLiveHistory& apps) { return apps.minutesOf(app, setup_.now()); });
}

void LiveRecord::restore(WallTime now) {
    try {
        auto content = readArchive(setup_.file);
        if (!content) return;
        kept_.withValue([&](Kept& kept) {
            kept.earlierBreaks =
                kept.store.restore(std::move(content->samples), std::move(content->breaks), now);
        });
        apps_.withValue([&](AppLiveHistory& apps) { apps.restore(std::move(content->apps), now); });
    } catch (const std::exception& error) {
        log(fmt::format("could not read the sample history: {}", error.what()));
        setBrokenAside(error.what());
    }
}

void LiveRecord::setBrokenAside(const char* problem) {
    try {
        if (!lock_.acquire(setup_.file)) return; // whoever saves into it will see to it
        log(fmt::format("it was set aside as {}", setAside(setup_.file, problem).string()));
    } catch (const std::exception& error) {
        log(fmt::format("could not set it aside: {}", error.what()));
    }
}

void LiveRecord::save() {
    const auto samples = this->samples();
    try {
        if (samples.empty() || !lock_.acquire(setup_.file)) return;
        const Data data = HistoryArchive::encode(samples, breaks(), apps_.get());
        replaceFile(setup_.file, textOf(data), NewFile::forUserAlone);
    } catch (const std::exception& error) {
        log(fmt::format("could not save the sample history: {}", error.what()));
    }
}

} // namespace quarn
