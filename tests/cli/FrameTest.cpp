#include "cli/view/Frame.h"
#include "desktop/SampleMachine.h"
#include "support/Contains.h"

#include <algorithm>

namespace quarn::cli {
namespace {

using testing::contains;
using testing::SampleMachine;

FrameOptions optionsFor(const Snapshot& snapshot) {
    FrameOptions options;
    options.host = "workshop";
    options.known = knownIn(snapshot, sysinfo::SystemRoot::host());
    return options;
}

std::vector<std::string> rowsOf(const Snapshot& snapshot, Size size,
                                const std::optional<FrameOptions>& options = {}) {
    const Canvas canvas = frame(snapshot, size, options.value_or(optionsFor(snapshot)));
    std::vector<std::string> rows;
    for (int row = 0; row < size.rows; ++row) rows.push_back(canvas.rowText(row));
    return rows;
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
        Snapshot snapshot = SampleMachine{.cores = cores, .processes = 30}.at(30);
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
    Snapshot snapshot = SampleMachine{}.at(30);
    snapshot.gpu = {-1, -1, -1, 0, 0};
    const auto rows = rowsOf(snapshot, {80, 24});
    EXPECT_TRUE(rows[0].starts_with(" workshop  3.0 of 8 cores busy; cc1plus uses most")) << rows[0];
    EXPECT_TRUE(contains(rows[0], "up 3 d 4 h"));
    const std::pair<const char*, const char*> meters[]{
        {"CPU ", "37.5 %  load 2.31 1.84 1.40"},
        {"Memory", "40.0 %  6.41 of 16.0 GiB   6.00 GiB cached"},
        {"Swap", "420 MiB of 4.00 GiB"},
        {"Network", "in 1.70 MB/s   out  144 kB/s"},
        {"Disk  ", "read  177 kB/s   write 2.28 MB/s"},
        {" 7 ━", " 37"},                       // the last core
        {"  postgres ", "168 MiB          —"}, // disk use of someone else's process
        {"PID  Name", "▼CPU %"},
    };
    for (const auto& [row, part] : meters) EXPECT_TRUE(contains(rows[rowWith(rows, row)], part));
    const size_t head = rowWith(rows, "PID  Name");
    EXPECT_GE(rows.size() - head - 2, 10u); // processes
    EXPECT_TRUE(contains(rows[head + 1], " 337  cc1plus"));
    EXPECT_TRUE(contains(rows.back(), "q quit"));
    EXPECT_EQ(rowWith(rows, "GPU"), rows.size()) << "there is none";
}

TEST(Frame, ASmallTerminalKeepsWhatMattersMost) {
    const auto rows = rowsOf(SampleMachine{}.at(30), {40, 10});
    EXPECT_LT(rowWith(rows, "37.5 %"), rows.size());
    EXPECT_LT(rowWith(rows, "40.0 %"), rows.size());
    EXPECT_GE(rows.size() - rowWith(rows, "CPU %"), 6u);

    const auto tiny = rowsOf(SampleMachine{}.at(30), {12, 2});
    EXPECT_TRUE(contains(tiny[0], "CPU")) << tiny[0];
}

TEST(Frame, ALargeTerminalUsesItsWidth) {
    const Snapshot snapshot = SampleMachine{.cores = 64}.at(30);
    Trends trends;
    FrameOptions options = optionsFor(snapshot);
    trends.add(snapshot, options.known);
    options.trends = &trends;
    const auto rows = rowsOf(snapshot, {200, 60}, options);
    EXPECT_TRUE(contains(rows[rowWith(rows, "CPU ")], "peak 42.2 %"));
    EXPECT_TRUE(contains(rows[rowWith(rows, "Memory")], "Network"));
    const std::string& head = rows[rowWith(rows, "PID  Name")];
    for (const auto* title : {"Threads", "State", "Path"}) EXPECT_TRUE(contains(head, title)) << title;
    EXPECT_LT(rowWith(rows, " 63 ━"), rows.size());
}

TEST(Frame, AThousandCpusLeaveRoomForTheRest) {
    const auto rows = rowsOf(SampleMachine{.cores = 1000}.at(30), {80, 24});
    EXPECT_TRUE(contains(rows[0], "427 of 1000 cores busy"));
    EXPECT_LT(rowWith(rows, "one block for 3 cores"), rows.size());
    const size_t head = rowWith(rows, "PID  Name");
    EXPECT_GE(rows.size() - head - 2, 6u);
    // 204 CPUs to a row: their number stands before each.
    for (const auto* first : {"   0 ▄", " 204 ▄", " 816 ▄"}) EXPECT_LT(rowWith(rows, first), head) << first;
}

TEST(Frame, UnknownIsNotZero) {
    Snapshot snapshot = SampleMachine{}.at(30);
    snapshot.generation = snapshot.processGeneration = 1;
    const auto first = rowsOf(snapshot, {80, 24});
    EXPECT_TRUE(contains(first[rowWith(first, "CPU ")], " —  load"));
    EXPECT_TRUE(contains(first[rowWith(first, "Network")], "in         —"));
    EXPECT_FALSE(contains(first[0], "busy"));
    const std::string& process = first[rowWith(first, "PID  Name") + 1];
    EXPECT_EQ(process, "     337  cc1plus              ada             —   460 MiB          —   59m 54s");

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
