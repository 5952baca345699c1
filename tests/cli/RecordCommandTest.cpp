// Measurements as CSV, by the built program.
#include "cli/Program.h"
#include "support/Contains.h"
#include "support/TempRoot.h"

#include <algorithm>
#include <csignal>
#include <sstream>

namespace quarn::testing {
namespace {

std::vector<std::string> linesOf(const std::filesystem::path& file) {
    std::vector<std::string> lines;
    std::istringstream text(readFile(file));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

TEST(RecordCommand, WritesALineForEverySample) {
    const TempRoot folder;
    const auto file = folder.path() / "quarn-recording.csv";
    EXPECT_EQ(outputOf({"record", file.string(), "--seconds", "1", "--interval", "0.25"}), "");
    const auto lines = linesOf(file);
    ASSERT_GE(lines.size(), 3u); // a busy machine may be late
    EXPECT_LE(lines.size(), 5u);
    EXPECT_TRUE(lines[0].starts_with("time,cpu_total,"));
    for (const auto& line : lines) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 18) << line;
        EXPECT_FALSE(contains(line, "Z,,")) << "the first sample has its rates: " << line;
    }
    EXPECT_LT(lines[1], lines[2]);
}

TEST(RecordCommand, SaysWhatIsWrongInALine) {
    const std::tuple<std::vector<std::string>, int, std::string_view> cases[]{
        {{"record"}, 2, "quarn record takes one FILE"},
        {{"record", "a", "b"}, 2, "takes one FILE"},
        {{"record", "a", "--seconds", "1.5"}, 2, "'1.5' is not a whole number"},
        {{"record", "/nonexistent/r.csv"}, 1, "cannot write /nonexistent/r.csv: No such file or directory\n"},
        {{"record", "/dev/full"}, 1, "cannot write /dev/full: No space left on device\n"},
    };
    for (const auto& [arguments, status, says] : cases) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.status, status);
        EXPECT_TRUE(contains(outcome.err, says)) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

TEST(RecordCommand, EndsWithASignalAndShowsItsProgressInATerminal) {
    const TempRoot folder;
    const std::string file = (folder.path() / "r.csv").string();
    for (const int signal : {SIGINT, SIGTERM}) {
        TerminalProgram program({"record", file, "--interval", "0.02"});
        // Counted are those that are written, which may be two more at a time.
        for (int shown = 0; shown < 4; ++shown) ASSERT_TRUE(program.waitFor(" samples in " + file));
        if (signal == SIGINT)
            program.type("\x03");
        else
            ::kill(program.pid(), signal);
        const Outcome outcome = program.finish();
        EXPECT_EQ(outcome.status, signal == SIGINT ? 0 : -1);
        EXPECT_EQ(outcome.signal, signal == SIGINT ? 0 : signal);
        EXPECT_TRUE(contains(outcome.out, "Recording finished. File: " + file));
        EXPECT_GE(linesOf(file).size(), 4u);
        EXPECT_TRUE(readFile(file).ends_with('\n'));
    }
}

TEST(HistoryExportCommand, WritesTheSavedHalfHour) {
    TempRoot folder;
    const std::string file = (folder.path() / "h.csv").string();
    const Outcome none = runProgramIn(folder, {"history", "export", file});
    EXPECT_EQ(none.status, 1);
    EXPECT_TRUE(contains(none.err, "quarn-desktop and `quarn recorder` save theirs")) << none.err;
    folder.write("Quarn/live-history.plist",
                 readFile(QUARN_SOURCE_DIR "/tests/fuzz/corpus/fuzz_history_archive/samples"));
    EXPECT_TRUE(runProgramIn(folder, {"history", "export", file}).out.starts_with("Wrote 2 samples, "));
    const auto lines = linesOf(file);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_TRUE(lines[1].ends_with(",81,321,1234,Größe \U0001F600,250.2")) << lines[1];
    folder.write("Quarn/live-history.plist", "broken");
    EXPECT_EQ(runProgramIn(folder, {"history", "export", file}).status, 1);
    EXPECT_EQ(linesOf(file), lines);
}

} // namespace
} // namespace quarn::testing
