#include "cli/view/Frame.h"

#include "cli/view/CoreGrid.h"
#include "cli/view/MeterList.h"
#include "cli/view/ProcessTable.h"
#include "ui/modules/Format.h"
#include "ui/modules/StateSentence.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fmt/format.h>

namespace quarn::cli {
namespace {

constexpr int wide = 124;         ///< from here on two meters stand side by side
constexpr int leastProcesses = 5; ///< rows of processes that meters give way to
constexpr int meterGap = 4;

struct Layout { // which row holds what; rows are counted from the top
    int margin = 1;
    bool title = true;
    bool spaced = false; ///< blank rows after the title and before the processes
    bool airy = false;   ///< and between the cores and the other meters
    bool hint = true;
    int meterRows = 0;
    int coreRows = 0;
};

Layout layoutFor(Size size, size_t cores, size_t meters) {
    Layout layout;
    layout.margin = size.columns >= 40 ? 1 : 0;
    layout.title = size.rows >= 3;
    layout.hint = size.rows >= 8;
    layout.spaced = size.rows >= 20;
    layout.airy = size.rows >= 30;
    int rest = size.rows - 1 - (layout.title ? 1 : 0) - (layout.hint ? 1 : 0) - (layout.spaced ? 2 : 0) -
               (layout.airy ? 1 : 0);
    const int perRow = size.columns >= wide ? 2 : 1;
    const int wanted = (static_cast<int>(meters) + perRow - 1) / perRow;
    layout.meterRows = std::clamp(rest - 1 - leastProcesses, std::min(rest, 1), wanted);
    rest -= layout.meterRows + 1 + leastProcesses;
    layout.coreRows = cores < 2 ? 0 : std::clamp(rest, 0, std::max(size.rows / 4, 2));
    return layout;
}

std::string clock(WallTime time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    return fmt::format("{:02}:{:02}:{:02}", local.tm_hour, local.tm_min, local.tm_sec);
}

void drawTitle(Canvas& canvas, Strip strip, const Snapshot& snapshot, const FrameOptions& options) {
    int column = canvas.put(strip.row, strip.begin, options.host, {Ink::text, Weight::bold}, strip.end);
    const std::string sentence = stateSentence(snapshot, options.known);
    column = canvas.put(strip.row, column + 2, sentence, {}, strip.end) + 2;

    std::vector<std::string> facts{clock(snapshot.timestamp)};
    if (options.known.uptime) facts.push_back("up " + format::duration(snapshot.uptime));
    if (!snapshot.processes.empty()) {
        facts.push_back(
            fmt::format("{} processes, {} threads", snapshot.processes.size(), snapshot.totalThreads));
    }
    for (const std::string& fact : facts) { // from the right, as long as there is room
        const int begin = strip.end - canvas.width(fact);
        if (begin < column) break;
        canvas.put(strip.row, begin, fact, {Ink::dim});
        strip.end = begin - 3;
    }
}

/// What the monitor itself costs, quietly; the long form where there is room for it.
void drawOwnUse(Canvas& canvas, Strip strip, const Snapshot& snapshot, const FrameOptions& options) {
    if (!options.ownPid || !options.known.processRates) return;
    for (const ProcInfo& process : snapshot.processes) {
        if (process.pid != *options.ownPid) continue;
        const std::string cpu = "quarn " + format::percent(process.cpuPercent);
        const std::string full = cpu + " · " + format::memory(process.memBytes);
        canvas.putRight(strip.row, strip.begin, strip.end, canvas.width(full) <= strip.width() ? full : cpu,
                        {Ink::dim});
    }
}

/// "q quit  c CPU …": the key first, in bold.
void drawHint(Canvas& canvas, Strip strip, const Snapshot& snapshot, const FrameOptions& options) {
    struct Key {
        std::string_view key;
        std::string_view does;
        std::optional<ProcessOrder> order;
    };
    constexpr std::array<Key, 7> keys{{
        {"q", "quit", {}},
        {"space", "freeze", {}},
        {"c", "CPU", ProcessOrder::cpu},
        {"m", "memory", ProcessOrder::memory},
        {"d", "disk", ProcessOrder::disk},
        {"p", "PID", ProcessOrder::pid},
        {"n", "name", ProcessOrder::name},
    }};
    const bool frozen = options.motion == FrameOptions::Motion::frozen;
    int column = strip.begin;
    if (frozen) {
        column = canvas.put(strip.row, column, "frozen", {Ink::warning, Weight::bold}, strip.end) + 2;
    }
    for (const Key& key : keys) {
        const std::string_view does = frozen && key.key == "space" ? "go on" : key.does;
        if (column + canvas.width(key.key) + 1 + canvas.width(does) > strip.end) break;
        column = canvas.put(strip.row, column, key.key, {Ink::text, Weight::bold}) + 1;
        column = canvas.put(strip.row, column, does, {key.order == options.order ? Ink::text : Ink::dim}) + 2;
    }
    drawOwnUse(canvas, {strip.row, column + 1, strip.end}, snapshot, options);
}

int meterWidth(const Canvas& canvas, Strip strip) {
    return canvas.size().columns >= wide ? (strip.width() - meterGap) / 2 : strip.width();
}

/// The CPUs together, and on a wide terminal how their load was.
void drawCpu(Canvas& canvas, Strip strip, const Meter& meter, const Trends* trends) {
    const int width = meterWidth(canvas, strip);
    Strip left = strip, right = strip;
    left.end = strip.begin + width;
    right.begin = strip.end - width;
    drawMeter(canvas, left, meter);
    if (width < strip.width() && trends != nullptr) drawMeter(canvas, right, cpuHistory(*trends));
}

/// Fills rows of two meters each on a wide terminal, of one on others; the first row below.
int drawMeters(Canvas& canvas, Strip top, int rows, const std::vector<Meter>& meters) {
    const bool twoColumns = canvas.size().columns >= wide;
    const int width = meterWidth(canvas, top);
    const size_t perRow = twoColumns ? 2 : 1;
    for (size_t i = 0; i < meters.size() && static_cast<int>(i / perRow) < rows; ++i) {
        Strip strip = top;
        strip.row += static_cast<int>(i / perRow);
        if (twoColumns && i % 2 == 0) strip.end = strip.begin + width;
        if (twoColumns && i % 2 == 1) strip.begin = strip.end - width;
        drawMeter(canvas, strip, meters[i]);
    }
    return top.row + std::min(rows, static_cast<int>((meters.size() + perRow - 1) / perRow));
}

} // namespace

Canvas frame(const Snapshot& snapshot, Size size, const FrameOptions& options) {
    Canvas canvas(size, options.charset);
    const std::vector<Meter> meters = otherMeters(snapshot, options.known, options.trends);
    const size_t cores = snapshot.cpu.perCore.size();
    const Layout layout = layoutFor(canvas.size(), cores, meters.size());
    Strip strip{0, layout.margin, canvas.size().columns - layout.margin};

    if (layout.title) {
        drawTitle(canvas, strip, snapshot, options);
        strip.row += layout.spaced ? 2 : 1;
    }
    const CoreGrid grid(cores, strip.width(), layout.coreRows);
    Meter cpu = cpuMeter(snapshot, options.known);
    if (grid.coresPerBlock() > 1) {
        cpu.facts.insert(cpu.facts.begin(), {fmt::format("one block for {} cores", grid.coresPerBlock())});
    }
    drawCpu(canvas, strip, cpu, options.trends);
    ++strip.row;
    if (options.known.cpu) {
        grid.draw(canvas, strip, snapshot.cpu.perCore, snapshot.cpu.perCoreSystem);
    } else {
        grid.draw(canvas, strip, {}, {});
    }
    strip.row += grid.rows() + (layout.airy ? 1 : 0);
    strip.row = drawMeters(canvas, strip, layout.meterRows, meters) + (layout.spaced ? 1 : 0);
    const int below = layout.hint ? 1 : 0;
    drawProcesses(canvas, strip, canvas.size().rows - below - strip.row, snapshot, options);
    if (layout.hint) {
        strip.row = canvas.size().rows - 1;
        drawHint(canvas, strip, snapshot, options);
    }
    return canvas;
}

} // namespace quarn::cli
