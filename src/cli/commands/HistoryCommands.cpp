// Commands about the long-term history.
#include "HelperKit/SignalPipe.h"
#include "cli/Command.h"
#include "cli/CommandLine.h"
#include "cli/Engine.h"
#include "cli/HistoryCommand.h"
#include "cli/Output.h"
#include "history/History.h"
#include "history/HistoryTime.h"
#include "history/MetricsStore.h"
#include "ui/modules/CalendarText.h"
#include "ui/modules/HistoryText.h"
#include "ui/settings/Prefs.h"

#include <csignal>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

#include <fmt/format.h>

namespace quarn::cli {

namespace {

constexpr uint64_t defaultLimit = 10;
constexpr int longestLine = 4096;

WallTime now() { return std::chrono::system_clock::now(); }

HistoryLayout layoutOfOutput() {
    constexpr int widest = 132;
    winsize size{};
    HistoryLayout layout{.charset = charsetOfEnvironment()};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        layout.columns = std::min<int>(size.ws_col, widest);
    return layout;
}

/// Throws with what to do when there is nothing to read.
MetricsStore openHistory(MetricsStore::Access access = MetricsStore::Access::reading) {
    const auto file = metricsFile();
    std::error_code error;
    if (!file.empty() && std::filesystem::exists(file, error)) return MetricsStore(file, access);
    throw std::runtime_error(
        "nothing has been recorded yet; start quarn-desktop or `quarn recorder`, and look "
        "again in a few minutes");
}

int print(const Options& options, const std::string& text, const auto& writeJson) {
    if (options.form == Options::Form::text) {
        writeOut(text);
        return 0;
    }
    JsonWriter json;
    writeJson(json);
    writeOut(json.text());
    return 0;
}

HistoryQuestion questionOf(const Options& options) {
    return {options.span.value_or(HistorySpan::day),
            options.metric.value_or(AppHistoryMetric::cpu),
            static_cast<size_t>(options.limit == UINT64_MAX ? defaultLimit : options.limit),
            {}};
}

int runSeries(const Options& options) {
    auto store = openHistory();
    const auto answer = readHistory(store, questionOf(options), now());
    return print(options, seriesText(answer, options.metric, layoutOfOutput()),
                 [&](JsonWriter& json) { writeSeries(json, answer); });
}

int runTop(const Options& options) {
    auto store = openHistory();
    const auto answer = readHistory(store, questionOf(options), now());
    return print(options, topText(answer, layoutOfOutput()),
                 [&](JsonWriter& json) { writeTop(json, answer); });
}

int runApp(const Options& options) {
    auto store = openHistory();
    auto question = questionOf(options);
    const std::string& name = options.words[1];
    const auto longest = traits(HistorySpan::twoYears).seconds;
    const int64_t time = unixSeconds(now());
    const auto found = appsNamed(store.appTotals(time - longest, time + 1), name);
    if (found.empty()) throw std::runtime_error("no application of that name was recorded: " + name);
    question.app = found.front().bundlePath;
    const auto answer = readHistory(store, question, now());
    if (!answer.app && options.form == Options::Form::text)
        throw std::runtime_error(
            fmt::format("{} did not run in {}", appName(found.front()), lastSpan(question.span)));
    for (size_t i = 1; i < found.size() && options.form == Options::Form::text; ++i)
        complain(fmt::format("also {}: {}", appName(found[i]), found[i].bundlePath));
    return print(options, appText(answer, layoutOfOutput()),
                 [&](JsonWriter& json) { writeApp(json, answer); });
}

int runTotals(const Options& options) {
    auto store = openHistory();
    if (options.span) {
        const auto answer = readHistory(store, questionOf(options), now());
        return print(options, totalsText(answer, layoutOfOutput()),
                     [&](JsonWriter& json) { writeTotals(json, answer); });
    }
    const auto totals = store.recentTotals(now());
    return print(options, totalsText(totals, layoutOfOutput()),
                 [&](JsonWriter& json) { writeTotals(json, totals); });
}

int runClear(const Options& options) {
    auto store = openHistory(MetricsStore::Access::writing);
    if (options.confirmation == Options::Confirmation::asked) {
        if (::isatty(STDIN_FILENO) == 0)
            throw std::runtime_error("clearing deletes the whole history; say so with --yes");
        writeOut("Delete the whole history of this user? It cannot be brought back. [y/N] ");
        std::string line;
        std::getline(std::cin, line);
        if (line != "y" && line != "Y" && line != "yes") {
            writeOut("Nothing was deleted.\n");
            return 0;
        }
    }
    store.clear();
    store.vacuum(now());
    writeOut("The history was deleted.\n");
    return 0;
}

int runExport(const Options& options) {
    const auto file = liveHistoryFile();
    const auto content = readArchive(file);
    if (!content || content->samples.empty())
        throw std::runtime_error(
            "there is no live history yet; quarn-desktop and `quarn recorder` save theirs "
            "every five minutes and when they end");
    HistoryExport::writeCSV(options.words[1], content->samples);
    const auto timeOf = [](const SharedSample& sample) { return unixSeconds(sample->time); };
    writeOut(
        fmt::format("Wrote {} samples, {}, into {}\n", content->samples.size(),
                    fitted(periodText(timeOf(content->samples.front()), timeOf(content->samples.back()) + 1),
                           longestLine, charsetOfEnvironment()),
                    fitted(options.words[1], longestLine, charsetOfEnvironment())));
    return success;
}

/// What SQLite says, with the file and what to do.
std::string complaintOf(const SQLiteError& error) {
    std::string text = fmt::format("cannot use the history in {}: {}", metricsFile().string(), error.what());
    if (error.isBroken()) text += "; quarn-desktop or `quarn recorder` sets it aside and begins a new one";
    return text;
}

struct Action {
    std::string_view name;
    size_t words; ///< with the name
    int (*run)(const Options&);
};
constexpr std::array<Action, 6> actions{{{"series", 1, runSeries},
                                         {"top", 1, runTop},
                                         {"app", 2, runApp},
                                         {"totals", 1, runTotals},
                                         {"export", 2, runExport},
                                         {"clear", 1, runClear}}};

/// Runs it; what SQLite throws comes out as a sentence for people.
int runAction(const Action& action, const Options& options) {
    try {
        return action.run(options);
    } catch (const SQLiteError& error) {
        throw std::runtime_error(complaintOf(error));
    }
}

/// How recording is going, in a line.
std::string stateText(const HistoryStatus& status) {
    using State = HistoryStatus::State;
    std::string text;
    switch (status.state) {
    case State::recording: text = "recording into " + metricsFile().string(); break;
    case State::otherRecorder: text = "another program records; this one takes over when it ends"; break;
    case State::off: text = "the setting saveMetricsHistory is off, so nothing is recorded"; break;
    case State::failed: text = "nothing can be recorded"; break;
    }
    return status.problem.empty() ? text : text + ": " + status.problem;
}

} // namespace

int runRecorder(const Options& options) {
    if (!options.root.isHost()) throw std::runtime_error("a captured machine does nothing to record");
    SignalPipe signals({SIGINT, SIGTERM, SIGHUP});
    Engine engine(options.root);
    History history({.monitor = engine.monitor(),
                     .prefs = Prefs::shared(),
                     .main = engine.loop(),
                     .statusChanged = [](const HistoryStatus& status) { complain(stateText(status)); }});
    if (!Prefs::shared().saveMetricsHistory.get()) complain(stateText(HistoryStatus()));
    const auto watch =
        engine.loop().watch(signals.readable(), [&] { signals.drain([&](int) { engine.loop().stop(); }); });
    engine.monitor().setBackground(true);
    engine.monitor().start();
    engine.loop().run();
    return success;
}

int runHistory(const Options& options) {
    if (!options.root.isHost()) throw std::runtime_error("a captured machine has no history");
    for (const auto& action : actions)
        if (!options.words.empty() && options.words[0] == action.name && options.words.size() == action.words)
            return runAction(action, options);
    complain(
        "quarn history takes one of series, top, app NAME, totals, export FILE, clear; see quarn history "
        "--help");
    return wrongUsage;
}

} // namespace quarn::cli
