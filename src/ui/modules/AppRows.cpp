#include "ui/modules/AppRows.h"

#include "core/Scan.h"
#include "ui/modules/Format.h"
#include "ui/modules/LetterCase.h"
#include "ui/modules/SearchWords.h"
#include "ui/settings/Prefs.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace quarn {

namespace {

using App = ResourceAppList::App;
using Process = ResourceAppList::Process;

constexpr AppField figures[]{AppField::cpu,     AppField::memory, AppField::disk,
                             AppField::network, AppField::energy, AppField::threads};

bool matches(const App& app, const SearchWords& words) {
    return words.all([&](const std::string& word) {
        return containsIgnoringCase(app.name, word) ||
               (app.bundle && containsIgnoringCase(*app.bundle, word));
    });
}

/// Words that the application's name has need not occur in the process's.
bool matches(const App& app, const Process& process, const SearchWords& words) {
    return words.all([&](const std::string& word) {
        return containsIgnoringCase(process.name, word) || containsIgnoringCase(process.path, word) ||
               containsIgnoringCase(app.name, word) || scutil::toNumber<int64_t>(word) == process.pid;
    });
}

/// Puts rows into the order of a view; what is not known comes last in either direction.
class Order {
public:
    Order(const AppView& view, const Known& known)
        : field_(view.sortedBy),
          sign_(view.direction == AppView::Direction::descending ? -1 : 1),
          known_(known) {}

    bool operator()(const AppRow& a, const AppRow& b) const {
        if (field_ != AppField::name) {
            const double x = appNumber(a, field_, known_), y = appNumber(b, field_, known_);
            if (std::isnan(x) != std::isnan(y)) return std::isnan(y);
            if (x != y && !std::isnan(x)) return sign_ * (x < y ? -1 : 1) < 0;
        }
        const int names = compareIgnoringCase(a.name(), b.name());
        if (names != 0) return (field_ == AppField::name ? sign_ : 1) * names < 0;
        return a.process ? a.process->pid < b.process->pid : historyKey(*a.app) < historyKey(*b.app);
    }

private:
    AppField field_;
    double sign_;
    const Known& known_;
};

/// What all have in common from the front, up to a slash.
std::string_view commonFolder(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    const std::string_view common = a.substr(0, static_cast<size_t>(ends.first - a.begin()));
    return common.substr(0, common.rfind('/') + 1);
}

/// A folder that others share is none of the application's: "/usr/bin/".
bool isOwnFolder(std::string_view folder) { return std::count(folder.begin(), folder.end(), '/') > 3; }

} // namespace

AppStyle appStyle(const Prefs& prefs, size_t cores) {
    return {readingStyle(prefs), prefs.appCPUWholeMac.get() ? std::max<size_t>(cores, 1) : 0};
}

std::string_view historyKey(const App& app) { return app.bundle ? app.bundle->view() : app.name.view(); }

std::string processSearch(const App& app) {
    if (app.processes.empty()) return std::string(app.name);
    const std::string_view first = app.processes.front().path;
    std::string_view folder = first;
    bool isOneProgram = !first.empty();
    for (const Process& process : app.processes) {
        isOneProgram &= process.path == first;
        folder = commonFolder(folder, process.path);
    }
    if (isOneProgram) return std::string(first);
    return std::string(isOwnFolder(folder) ? folder : app.processes.front().name.view());
}

void AppRows::take(std::shared_ptr<const ResourceAppList> list, const Known& known) {
    known_ = known;
    if (list != latest_) former_ = std::exchange(latest_, std::move(list));
    tells_.fill(false);
    largest_.fill(0);
    tells_[static_cast<size_t>(AppField::name)] = tells_[static_cast<size_t>(AppField::processes)] = true;
    if (!latest_) return;
    for (const App& app : latest_->apps)
        for (const AppField field : figures) {
            const double number = appNumber({&app}, field, known_);
            if (std::isnan(number)) continue;
            const auto at = static_cast<size_t>(field);
            tells_[at] = true;
            largest_[at] = std::max(largest_[at], number);
        }
}

std::span<const AppRow> AppRows::rows(const AppView& view) {
    rows_.clear();
    matching_ = 0;
    if (!latest_) return rows_;
    const SearchWords words(view.search);
    const Order order(view, known_);
    std::vector<AppRow> apps;
    for (const App& app : latest_->apps) {
        const bool isMatch = matches(app, words);
        const bool isShown =
            isMatch || std::any_of(app.processes.begin(), app.processes.end(),
                                   [&](const Process& process) { return matches(app, process, words); });
        if (isShown) apps.push_back({&app, nullptr, -1, isMatch});
    }
    matching_ = apps.size();
    std::sort(apps.begin(), apps.end(), order);
    for (const AppRow& row : apps) {
        const int place = static_cast<int>(rows_.size());
        rows_.push_back(row);
        const auto first = static_cast<std::ptrdiff_t>(rows_.size());
        for (const Process& process : row.app->processes)
            if (row.isMatch || matches(*row.app, process, words))
                rows_.push_back({row.app, &process, place, true});
        std::sort(rows_.begin() + first, rows_.end(), order);
    }
    return rows_;
}

double appNumber(const AppRow& row, AppField field, const Known& known) {
    const ResourceUsage& usage = row.usage();
    const auto number = [](bool isKnown, double value) { return isKnown ? value : format::notKnown; };
    switch (field) {
    case AppField::name: break;
    case AppField::cpu: return number(usage.known.measured && known.processRates, usage.cpuPercent);
    case AppField::memory: return number(usage.known.measured, static_cast<double>(usage.memBytes));
    case AppField::disk:
        return number(usage.known.disk && known.processRates, usage.diskRead + usage.diskWrite);
    case AppField::network: return number(usage.known.network, usage.network.download + usage.network.upload);
    case AppField::energy: return usage.watts.value_or(format::notKnown);
    case AppField::processes: return number(!row.process, static_cast<double>(row.app->processCount));
    case AppField::threads: return number(usage.known.measured, static_cast<double>(usage.threads));
    }
    return format::notKnown;
}

std::string shownAppField(const AppRow& row, AppField field, const Known& known, const AppStyle& style) {
    if (field == AppField::name) return format::orUnknown(row.name());
    if (field == AppField::processes && row.process) return {};
    const double number = appNumber(row, field, known);
    if (std::isnan(number)) return std::string(format::unknown);
    switch (field) {
    case AppField::cpu:
        return format::percentFigure(style.wholeMachine > 0 ? number / static_cast<double>(style.wholeMachine)
                                                            : number);
    case AppField::memory: return format::memory(row.usage().memBytes);
    case AppField::disk: return format::rate(number);
    case AppField::network: return networkRateText(number, style.reading);
    case AppField::energy: return format::watts(number);
    default: return std::to_string(std::llround(number));
    }
}

std::string_view whyUnknown(const AppRow& row, AppField field, const Known& known) {
    if (field == AppField::name || (field == AppField::processes && row.process)) return {};
    if (!std::isnan(appNumber(row, field, known))) return {};
    const ResourceUsage& usage = row.usage();
    switch (field) {
    case AppField::network:
    case AppField::energy: return whyUntold(field);
    case AppField::disk:
        if (!usage.known.disk)
            return "Only the owner of a process and the administrator may read this. Needs the helper.";
        break;
    default:
        if (!usage.known.measured)
            return "The kernel tells nothing of these processes to your user. Needs the helper.";
    }
    return "A rate needs two samples.";
}

std::string_view whyUntold(AppField field) {
    switch (field) {
    case AppField::disk: return "Only the administrator may read this here. Needs the helper.";
    case AppField::network: return "The kernel does not count traffic by process. Needs the helper.";
    case AppField::energy: return "Nothing on this machine tells the power of single processes.";
    default: return "Not known on this machine.";
    }
}

std::vector<const App*> topApps(const ResourceAppList& list, AppField field, const Known& known,
                                size_t limit) {
    const Order order({.sortedBy = field}, known);
    std::vector<const App*> apps;
    apps.reserve(list.apps.size());
    for (const App& app : list.apps) apps.push_back(&app);
    limit = std::min(limit, apps.size());
    std::partial_sort(apps.begin(), apps.begin() + static_cast<std::ptrdiff_t>(limit), apps.end(),
                      [&](const App* a, const App* b) { return order({a}, {b}); });
    apps.resize(limit);
    return apps;
}

std::string appSentence(const ResourceAppList& list, const Known& known, size_t cores) {
    int64_t processes = 0;
    const App* busiest = nullptr;
    for (const App& app : list.apps) {
        processes += app.processCount;
        if (app.usage.known.measured && (!busiest || app.usage.cpuPercent > busiest->usage.cpuPercent))
            busiest = &app;
    }
    if (list.apps.empty()) return "No process can be read";
    std::string text = fmt::format("{} application{} with {} process{}", list.apps.size(),
                                   list.apps.size() == 1 ? "" : "s", processes, processes == 1 ? "" : "es");
    constexpr double noticeable = 1; // percent of a core
    if (!known.processRates || !busiest) return text;
    if (busiest->usage.cpuPercent < noticeable) return text + "; all of them rest";
    text += fmt::format("; {} uses most CPU", busiest->name.view());
    if (cores > 1)
        text += fmt::format(", {} of {} cores", format::threeDigits(busiest->usage.cpuPercent / 100), cores);
    return text;
}

} // namespace quarn
