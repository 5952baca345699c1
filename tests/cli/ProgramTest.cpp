// The built program, run for real.
#include "cli/Program.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace quarn::testing {
namespace {

using nlohmann::json;
using Arguments = std::vector<std::string>;

bool isOneLine(const std::string& text) {
    return text.ends_with('\n') && std::count(text.begin(), text.end(), '\n') == 1;
}

TEST(Program, WrongUsageIsOneLineAndStatusTwo) {
    const TempRoot empty;
    struct Case {
        Arguments arguments;
        std::string_view says;
    };
    const std::vector<Case> cases{
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
        {{"snapshot", "--root", "/nonexistent"}, "/nonexistent is no folder"},
        {{"--root", empty.path().string(), "volumes"}, "holds neither proc nor sys"},
        {{"\x1b[31m\nred"}, "unknown command '\uFFFD[31m\uFFFDred'"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = runProgram(c.arguments);
        EXPECT_EQ(outcome.status, 2) << c.says;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(isOneLine(outcome.err)) << outcome.err;
        EXPECT_TRUE(outcome.err.starts_with("quarn: ")) << outcome.err;
        EXPECT_NE(outcome.err.find(c.says), std::string::npos) << outcome.err;
    }
}

TEST(Program, HelpNamesEveryCommandAndGivesExamples) {
    const Outcome help = runProgram({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (const std::string command : {"snapshot", "stream", "processes", "disks", "volumes", "sensors"}) {
        EXPECT_NE(help.out.find("\n  " + command + " "), std::string::npos) << command;
        const Outcome own = runProgram({command, "--help"});
        EXPECT_EQ(runProgram({"help", command}).out, own.out);
        EXPECT_EQ(own.status, 0);
        EXPECT_NE(own.out.find("Example:\n  quarn " + command), std::string::npos) << own.out;
    }
    EXPECT_TRUE(runProgram({"--version"}).out.starts_with("quarn "));
}

TEST(Program, SnapshotReadsThisMachine) {
    const Outcome outcome = runProgram({"snapshot", "--json", "--interval", "0.05"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(isOneLine(outcome.out));
    const json document = json::parse(outcome.out);
    EXPECT_GE(document["cpu"]["total"].get<double>(), 0);
    EXPECT_GT(document["mem"]["total"].get<uint64_t>(), 0u);
    EXPECT_GT(document["uptime"].get<double>(), 0);
    EXPECT_EQ(document["generation"], 2);
    EXPECT_EQ(document["processGeneration"], 2);
    const auto& processes = document["processes"];
    const bool sawItself = std::any_of(processes.begin(), processes.end(),
                                       [](const json& process) { return process["name"] == "quarn"; });
    EXPECT_TRUE(sawItself);

    const json single = json::parse(runProgram({"snapshot", "--json", "--interval", "0"}).out);
    EXPECT_TRUE(single["cpu"]["total"].is_null()) << "one sample has no rates";
    EXPECT_GT(single["mem"]["used"].get<uint64_t>(), 0u);
}

TEST(Program, WithoutATerminalItPrintsAPlainSnapshot) {
    const Outcome outcome = runProgram({});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("\nMemory "), std::string::npos);
    EXPECT_NE(outcome.out.find("PID  Name"), std::string::npos);
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos);
}

TEST(Program, StreamWritesADocumentALine) {
    const auto begin = std::chrono::steady_clock::now();
    const Outcome outcome = runProgram({"stream", "--json", "--count", "3", "--interval", "0.02"});
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    std::istringstream lines(outcome.out);
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
    const json list = json::parse(
        runProgram({"processes", "--json", "--sort", "memory", "--limit", "3", "--interval", "0"}).out);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_GE(list[0]["memBytes"].get<uint64_t>(), list[1]["memBytes"].get<uint64_t>());
    const Outcome text = runProgram({"processes", "--sort", "pid", "--limit", "2", "--interval", "0"});
    EXPECT_EQ(std::count(text.out.begin(), text.out.end(), '\n'), 3) << text.out;
}

TEST(Program, ACapturedMachineShowsOnlyWhatItHolds) {
    TempRoot captured;
    captured.write("proc/meminfo", "MemTotal:  1000 kB\nMemFree:  400 kB\nBuffers: 0 kB\nCached: 100 kB\n");
    captured.write("proc/7/stat", "7 (evil\x1b[31m) S 1 7 7 0 -1 0 0 0 0 0 5 5 0 0 20 0 1 0 50 0 25 0\n");
    const std::string root = captured.path().string();
    const json document =
        json::parse(runProgram({"--root", root, "snapshot", "--json", "--interval", "0.01"}).out);
    EXPECT_EQ(document["mem"]["total"], 1'024'000);
    EXPECT_TRUE(document["cpu"]["total"].is_null());
    EXPECT_TRUE(document["net"]["rxBytes"].is_null());
    EXPECT_TRUE(document["uptime"].is_null());
    EXPECT_EQ(document["loadAvg"], json::array());
    ASSERT_EQ(document["processes"].size(), 1u);
    EXPECT_EQ(document["processes"][0]["name"], "evil\x1b[31m");
    EXPECT_EQ(runProgram({"processes", "--root", root, "--interval", "0"}).out.find('\x1b'),
              std::string::npos);
}

// ---- The live view in a terminal

constexpr std::string_view entered = "\x1b[?1049h\x1b[?25l";
constexpr std::string_view left = "\x1b[?25h\x1b[?1049l";

bool echoes(const termios& modes) { return (modes.c_lflag & ECHO) != 0 && (modes.c_lflag & ICANON) != 0; }

TEST(LiveView, GivesTheTerminalBackHoweverItEnds) {
    struct Ending {
        std::string_view keys;
        int signal; ///< sent when there are no keys
        int status;
        int endedBy;
    };
    for (const Ending& ending :
         {Ending{"q", 0, 0, 0}, Ending{"\x03", 0, 0, 0}, Ending{"", SIGTERM, -1, SIGTERM},
          Ending{"", SIGHUP, -1, SIGHUP}, Ending{"", SIGSEGV, -1, SIGSEGV}}) {
        TerminalProgram program({});
        ASSERT_TRUE(program.waitFor(entered));
        ASSERT_TRUE(program.waitFor("quit"));
        EXPECT_FALSE(echoes(program.modes()));
        if (ending.keys.empty()) {
            ::kill(program.pid(), ending.signal);
        } else {
            program.type(ending.keys);
        }
        const Outcome outcome = program.finish();
        EXPECT_EQ(outcome.status, ending.status) << ending.signal;
        EXPECT_EQ(outcome.signal, ending.endedBy);
        EXPECT_TRUE(outcome.out.ends_with(left)) << ending.signal;
        EXPECT_TRUE(echoes(program.modes())) << ending.signal;
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
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos);
}

} // namespace
} // namespace quarn::testing
