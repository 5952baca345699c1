// The built program, run for real.
#include "cli/Program.h"
#include "support/Contains.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace quarn::testing {
namespace {

using nlohmann::json;

bool isOneLine(const std::string& text) {
    return text.ends_with('\n') && std::count(text.begin(), text.end(), '\n') == 1;
}

TEST(Program, WrongUsageIsOneLineAndStatusTwo) {
    const TempRoot empty;
    const std::pair<std::vector<std::string>, std::string_view> cases[]{
        {{"frobnicate"}, "unknown command 'frobnicate'"},
        {{"--frobnicate"}, "unknown option '--frobnicate'"},
        {{"snapshot", "--count", "3"}, "unknown option '--count'"},
        {{"snapshot", "more"}, "unknown argument 'more'"},
        {{"snapshot", "--interval"}, "--interval needs a value"},
        {{"snapshot", "--interval", "soon"}, "'soon' is not a number of seconds"},
        {{"snapshot", "--interval", "nan"}, "'nan' is not"},
        {{"snapshot", "--interval", "inf"}, "'inf' is not"},
        {{"snapshot", "--interval=-1"}, "'-1' is not"},
        {{"stream", "--count", "1e3"}, "'1e3' is not a whole number"},
        {{"stream", "--count", "99999999999999999999"}, "is not a whole number"},
        {{"processes", "--limit", "-1"}, "'-1' is not a whole number"},
        {{"processes", "--sort", "beauty"}, "'beauty' is none of cpu, memory, disk, pid, name"},
        {{"connections", "--proto", "icmp"}, "'icmp' is none of all, tcp, udp"},
        {{"connections", "--scope", "moon"}, "'moon' is none of internet, listening, local, all"},
        {{"connections", "--by", "name"}, "'name' is none of process, destination"},
        {{"history"}, "takes one of series, top, app NAME, totals, export FILE, clear"},
        {{"history", "app"}, "takes one of"},
        {{"history", "top", "more"}, "takes one of"},
        {{"history", "top", "--range", "decade"},
         "'decade' is none of hour, day, week, month, year, two-years"},
        {{"history", "top", "--by", "process"}, "'process' is none of cpu, memory, disk, energy, network"},
        {{"snapshot", "--root", "/nonexistent"}, "/nonexistent is no folder"},
        {{"--root", empty.path().string(), "volumes"}, "holds neither proc nor sys"},
        {{"\x1b[31m\nred"}, "unknown command '\uFFFD[31m\uFFFDred'"},
    };
    for (const auto& [arguments, says] : cases) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.status, 2) << says;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(isOneLine(outcome.err)) << outcome.err;
        EXPECT_TRUE(outcome.err.starts_with("quarn: ")) << outcome.err;
        EXPECT_TRUE(contains(outcome.err, says));
    }
}

TEST(Program, HelpNamesEveryCommandAndGivesExamples) {
    const std::string help = outputOf({"--help"});
    for (const std::string command :
         {"snapshot", "stream", "processes", "disks", "volumes", "sensors", "connections", "interfaces",
          "power", "battery", "gpu", "hardware", "history", "recorder", "settings"}) {
        const std::string own = outputOf({command, "--help"});
        EXPECT_TRUE(contains(help, "\n  " + command + " "));
        EXPECT_TRUE(contains(own, "Example:\n  ") && contains(own, "quarn " + command)) << own;
        EXPECT_EQ(outputOf({"help", command}), own);
    }
    EXPECT_TRUE(outputOf({"--version"}).starts_with("quarn "));
}

TEST(Program, SnapshotReadsThisMachine) {
    const std::string line = outputOf({"snapshot", "--json", "--interval", "0.05"});
    EXPECT_TRUE(isOneLine(line));
    const json document = json::parse(line);
    EXPECT_GE(document["cpu"]["total"].get<double>(), 0);
    EXPECT_GT(document["mem"]["total"].get<uint64_t>(), 0u);
    EXPECT_GT(document["uptime"].get<double>(), 0);
    EXPECT_EQ(document["generation"], 2);
    EXPECT_EQ(document["processGeneration"], 2);
    const auto& processes = document["processes"];
    EXPECT_TRUE(std::any_of(processes.begin(), processes.end(),
                            [](const json& process) { return process["name"] == "quarn"; }));

    const json single = json::parse(outputOf({"snapshot", "--json", "--interval", "0"}));
    EXPECT_TRUE(single["cpu"]["total"].is_null()) << "one sample has no rates";
    EXPECT_GT(single["mem"]["used"].get<uint64_t>(), 0u);
}

TEST(Program, WithoutATerminalItPrintsAPlainSnapshot) {
    const std::string text = outputOf({});
    EXPECT_TRUE(contains(text, "\nMemory "));
    EXPECT_TRUE(contains(text, "PID  Name"));
    EXPECT_FALSE(contains(text, "\x1b"));
}

TEST(Program, StreamWritesADocumentALine) {
    const auto begin = std::chrono::steady_clock::now();
    std::istringstream lines(outputOf({"stream", "--json", "--count", "3", "--interval", "0.02"}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
    std::vector<json> documents;
    for (std::string line; std::getline(lines, line);) documents.push_back(json::parse(line));
    ASSERT_EQ(documents.size(), 3u);
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(documents[i]["generation"], i + 2); // the first has rates
    EXPECT_LT(documents[0]["timestamp"], documents[2]["timestamp"]);
}

TEST(Program, StreamEndsQuietlyWhenNobodyReads) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    ::close(ends[0]);
    const Outcome outcome = runProgram({"stream", "--json", "--interval", "0.01"}, ends[1]);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST(Program, AFullDeviceIsAFailure) {
    const Outcome outcome = runProgram({"volumes"}, ::open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quarn: cannot write the output: No space left on device\n");
}

TEST(Program, ProcessesAreSortedAndLimited) {
    const json list =
        json::parse(outputOf({"processes", "--json", "--sort", "memory", "--limit", "3", "--interval", "0"}));
    ASSERT_EQ(list.size(), 3u);
    EXPECT_GE(list[0]["memBytes"].get<uint64_t>(), list[1]["memBytes"].get<uint64_t>());
    const std::string text = outputOf({"processes", "--sort", "pid", "--limit", "2", "--interval", "0"});
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3) << text;
}

TEST(Program, ACapturedMachineShowsOnlyWhatItHolds) {
    TempRoot captured;
    captured.write("proc/meminfo", "MemTotal:  1000 kB\nMemFree:  400 kB\nBuffers: 0 kB\nCached: 100 kB\n");
    captured.write("proc/7/stat", "7 (evil\x1b[31m) S 1 7 7 0 -1 0 0 0 0 0 5 5 0 0 20 0 1 0 50 0 25 0\n");
    const std::string root = captured.path().string();
    const json document = json::parse(outputOf({"--root", root, "snapshot", "--json", "--interval", "0.01"}));
    EXPECT_EQ(document["mem"]["total"], 1'024'000);
    EXPECT_TRUE(document["net"]["rxBytes"].is_null());
    EXPECT_EQ(document["loadAvg"], json::array());
    ASSERT_EQ(document["processes"].size(), 1u);
    EXPECT_EQ(document["processes"][0]["name"], "evil\x1b[31m");
    EXPECT_FALSE(contains(outputOf({"processes", "--root", root, "--interval", "0"}), "\x1b"));
}

// ---- The live view in a terminal

constexpr std::string_view entered = "\x1b[?1049h\x1b[?25l";
constexpr std::string_view left = "\x1b[?25h\x1b[?1049l";

bool echoes(const termios& modes) { return (modes.c_lflag & ECHO) != 0 && (modes.c_lflag & ICANON) != 0; }

TEST(LiveView, GivesTheTerminalBackHoweverItEnds) {
    const std::pair<std::string_view, int> endings[]{// keys or a signal
                                                     {"q", 0},
                                                     {"\x03", 0},
                                                     {"", SIGTERM},
                                                     {"", SIGHUP},
                                                     {"", SIGSEGV}};
    for (const auto& [keys, signal] : endings) {
        TerminalProgram program({});
        ASSERT_TRUE(program.waitFor(entered));
        ASSERT_TRUE(program.waitFor("quit"));
        EXPECT_FALSE(echoes(program.modes()));
        program.type(keys);
        if (signal != 0) ::kill(program.pid(), signal);
        const Outcome outcome = program.finish();
        EXPECT_EQ(outcome.status, signal == 0 ? 0 : -1) << signal;
        EXPECT_EQ(outcome.signal, signal);
        EXPECT_TRUE(outcome.out.ends_with(left)) << signal;
        EXPECT_TRUE(echoes(program.modes())) << signal;
    }
}

TEST(LiveView, ObeysKeysAndTheSizeOfTheTerminal) {
    TerminalProgram program({});
    ASSERT_TRUE(program.waitFor("quit"));
    program.type("n");
    EXPECT_TRUE(program.waitFor("Name▲"));
    program.type(" ");
    EXPECT_TRUE(program.waitFor("frozen"));
    program.resize(40, 10);
    EXPECT_TRUE(program.waitFor("\x1b[2J"));
    EXPECT_TRUE(program.waitFor("\x1b[10;2H")); // the last row is drawn
    program.type("\x1b[A \x1b]11;rgb:ffff/ffff/ffff\x07q");
    EXPECT_EQ(program.finish().status, 0);
}

TEST(LiveView, ATerminalThatCannotBeDrawnOnGetsText) {
    TerminalProgram program({}, "dumb");
    EXPECT_TRUE(program.waitFor("PID  Name"));
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_FALSE(contains(outcome.out, "\x1b"));
}

TEST(Program, TheRecorderRunsOnWhereItCannotRecordAndEndsWhenToldTo) {
    TerminalProgram recorder({"recorder"});
    EXPECT_TRUE(
        recorder.waitFor("quarn: nothing can be recorded: lock /dev/null/none/Quarn/metrics.sqlite.lock"));
    ::kill(recorder.pid(), SIGTERM);
    EXPECT_EQ(recorder.finish().status, 0);
}

TEST(Program, AHistoryThatIsNotThereIsAFailure) {
    for (const std::string action : {"series", "top", "totals", "clear"}) {
        const Outcome outcome = runProgram({"history", action});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(contains(outcome.err, "quarn: nothing has been recorded yet; start")) << action;
    }
    EXPECT_TRUE(contains(runProgram({"history", "export", "/tmp/x"}).err, "there is no live history yet"));
}

} // namespace
} // namespace quarn::testing
