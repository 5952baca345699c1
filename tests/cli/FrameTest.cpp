#include "cli/view/Frame.h"
#include "cli/SampleSnapshot.h"
#include "support/Contains.h"

#include <algorithm>

namespace quarn::cli {
namespace {

using testing::contains;
using testing::sampleSnapshot;

FrameOptions optionsFor(const Snapshot& snapshot) {
    FrameOptions options;
    options.host = "workshop";
    options.known = knownIn(snapshot, sysinfo::SystemRoot::host());
    return options;
}

std::vector<std::string> rowsOf(const Snapshot& snapshot, Size size, const FrameOptions& options) {
    const Canvas canvas = frame(snapshot, size, options);
    std::vector<std::string> rows;
    for (int row = 0; row < size.rows; ++row) rows.push_back(canvas.rowText(row));
    return rows;
}

std::vector<std::string> rowsOf(const Snapshot& snapshot, Size size) {
    return rowsOf(snapshot, size, optionsFor(snapshot));
}

size_t rowWith(const std::vector<std::string>& rows, std::string_view part) {
    const auto holds = [&](const std::string& row) { return row.find(part) != std::string::npos; };
    return static_cast<size_t>(std::find_if(rows.begin(), rows.end(), holds) - rows.begin());
}

/// Each row fills the terminal exactly, and nothing in it steers the terminal.
void expectSound(const Canvas& canvas, Charset charset) {
    const auto isHarmless = [charset](char32_t c) {
        const bool hides = c == 0x200B || c == 0x202E || c == 0x2066;
        return c >= 0x20 && (c < 0x7F || (c >= 0xA0 && charset == Charset::utf8)) && !hides;
    };
    for (int row = 0; row < canvas.size().rows; ++row) {
        int cells = 0;
        for (int column = 0; column < canvas.size().columns; ++column) {
            const Cell& cell = canvas.at(row, column);
            cells += cell.cells;
            ASSERT_TRUE(isHarmless(cell.glyph) && (cell.mark == 0 || isHarmless(cell.mark)));
        }
        ASSERT_EQ(cells, canvas.size().columns) << canvas.rowText(row);
    }
}

TEST(Frame, FillsAnyTerminalWhateverTheMachineAndItsProcessesAreCalled) {
    constexpr Size sizes[] = {{1, 1},  {2, 50},  {7, 3},    {20, 5},   {39, 7},   {40, 10},  {41, 8},
                              {79, 9}, {80, 24}, {115, 20}, {116, 20}, {200, 60}, {500, 200}};
    const std::vector<std::string_view> names{"\x1b[2J\x1b[31mred",
                                              "a\nb\rc\td\x7f",
                                              "日本語の非常に長い名前のプロセス",
                                              "ev\u202Eil\u2066",
                                              "e\u0301\u0301\u0301\u0301",
                                              "\xff\xfe\x80",
                                              "\u200B\u200B",
                                              "\u009B31m"};
    for (const size_t cores : {0, 1, 2, 8, 64, 1000, 5000}) {
        Snapshot snapshot = sampleSnapshot(cores, 30);
        std::vector<ProcInfo> processes(snapshot.processes.begin(), snapshot.processes.end());
        for (size_t i = 0; i < processes.size(); ++i) processes[i].name = names[i % names.size()];
        snapshot.processes = std::move(processes);
        Trends trends;
        FrameOptions options = optionsFor(snapshot);
        for (int i = 0; i < 700; ++i) trends.add(snapshot, options.known);
        options.trends = &trends;
        for (const Size size : sizes) {
            for (const Charset charset : {Charset::utf8, Charset::ascii}) {
                options.charset = charset;
                const Canvas canvas = frame(snapshot, size, options);
                ASSERT_EQ(canvas.size(), size);
                expectSound(canvas, charset);
            }
        }
    }
}

TEST(Frame, AStandardTerminalShowsMetersCoresAndProcesses) {
    const auto rows = rowsOf(sampleSnapshot(), {80, 24});
    EXPECT_TRUE(rows[0].starts_with(" workshop  1.9 of 8 cores busy; systemd uses most")) << rows[0];
    EXPECT_TRUE(contains(rows[0], "up 3 d 4 h"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "CPU ")], "23.4 %  load 0.52 0.41 0.30"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Memory")], "37.5 %  3.00 of 8.00 GiB   2.00 GiB cached"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Swap")], "512 MiB of 2.00 GiB"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Network")], "in 1.20 MB/s   out 34.0 kB/s"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Disk  ")], "read 1.20 MB/s"));
    EXPECT_TRUE(contains(rows[rowWith(rows, " 7 ━")], " 15")); // the last core
    const size_t head = rowWith(rows, "PID  Name");
    EXPECT_TRUE(contains(rows[head], "▼CPU %"));
    EXPECT_GE(rows.size() - head - 2, 10u); // processes
    EXPECT_TRUE(contains(rows[head + 1], "1148  sshd"));
    EXPECT_TRUE(contains(rows[head + 1], "—")) << "disk use of someone else's process";
    EXPECT_TRUE(contains(rows.back(), "q quit"));
    EXPECT_EQ(rowWith(rows, "GPU"), rows.size()) << "there is none";
}

TEST(Frame, ASmallTerminalKeepsWhatMattersMost) {
    const auto rows = rowsOf(sampleSnapshot(), {40, 10});
    EXPECT_LT(rowWith(rows, "23.4 %"), rows.size());
    EXPECT_LT(rowWith(rows, "37.5 %"), rows.size());
    EXPECT_GE(rows.size() - rowWith(rows, "CPU %"), 6u);

    const auto tiny = rowsOf(sampleSnapshot(), {12, 2});
    EXPECT_TRUE(contains(tiny[0], "CPU")) << tiny[0];
}

TEST(Frame, ALargeTerminalUsesItsWidth) {
    const Snapshot snapshot = sampleSnapshot(64);
    Trends trends;
    FrameOptions options = optionsFor(snapshot);
    trends.add(snapshot, options.known);
    options.trends = &trends;
    const auto rows = rowsOf(snapshot, {200, 60}, options);
    EXPECT_TRUE(contains(rows[rowWith(rows, "CPU ")], "peak 23.4 %"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Memory")], "Network"));
    const std::string& head = rows[rowWith(rows, "PID  Name")];
    for (const auto* title : {"Threads", "State", "Path"}) EXPECT_TRUE(contains(head, title)) << title;
    EXPECT_LT(rowWith(rows, " 63 ━"), rows.size());
}

TEST(Frame, AThousandCpusLeaveRoomForTheRest) {
    const auto rows = rowsOf(sampleSnapshot(1000), {80, 24});
    EXPECT_TRUE(contains(rows[0], "234 of 1000 cores busy"));
    EXPECT_LT(rowWith(rows, "one block for 3 cores"), rows.size());
    const size_t head = rowWith(rows, "PID  Name");
    EXPECT_GE(rows.size() - head - 2, 6u);
    // 204 CPUs to a row: their number stands before each.
    for (const auto* first : {"   0 ▃", " 204 ▅", " 816 ▄"}) EXPECT_LT(rowWith(rows, first), head) << first;
}

TEST(Frame, UnknownIsNotZero) {
    Snapshot snapshot = sampleSnapshot();
    snapshot.generation = snapshot.processGeneration = 1;
    const auto first = rowsOf(snapshot, {80, 24});
    EXPECT_TRUE(contains(first[rowWith(first, "CPU ")], " —  load"));
    EXPECT_TRUE(contains(first[rowWith(first, "Network")], "in         —"));
    EXPECT_FALSE(contains(first[0], "busy"));
    const std::string& process = first[rowWith(first, "PID  Name") + 1];
    EXPECT_EQ(process, "       1  systemd              ada             —  4.00 MiB          —        0s");

    snapshot.mem = {};
    snapshot.processes = {};
    FrameOptions options = optionsFor(snapshot);
    options.known = knownIn(snapshot, sysinfo::SystemRoot("/nowhere"));
    const auto captured = rowsOf(snapshot, {80, 24}, options);
    EXPECT_TRUE(contains(captured[rowWith(captured, "Memory")], "—"));
    EXPECT_EQ(rowWith(captured, "Swap"), captured.size());
}

} // namespace
} // namespace quarn::cli
