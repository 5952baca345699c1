#include "cli/ProcessColumns.h"

#include "ui/modules/Format.h"

#include <algorithm>

namespace quarn::cli {
namespace {

using format::unknown;

/// `form(value)` where the process could be measured.
template <class Value, class Form>
std::string measured(const ProcInfo& process, Value value, Form form) {
    return process.accessible ? form(value) : std::string(unknown);
}

std::string pid(const ProcInfo& p, const Known&) { return std::to_string(p.pid); }
std::string name(const ProcInfo& p, const Known&) { return std::string(p.name.view()); }
std::string user(const ProcInfo& p, const Known&) {
    return p.user.empty() ? std::to_string(p.uid) : std::string(p.user.view());
}
std::string cpu(const ProcInfo& p, const Known& known) {
    return known.processRates ? measured(p, p.cpuPercent, format::percentFigure) : std::string(unknown);
}
std::string memory(const ProcInfo& p, const Known&) { return measured(p, p.memBytes, format::memory); }
std::string disk(const ProcInfo& p, const Known& known) {
    const std::optional<double> rate = diskRate(p, known);
    return rate ? format::rate(*rate) : std::string(unknown);
}
std::string cpuTime(const ProcInfo& p, const Known&) {
    return measured(p, static_cast<double>(p.cpuTimeNs) / 1e9, format::shortDuration);
}
std::string threads(const ProcInfo& p, const Known&) {
    return measured(p, p.threads, [](int64_t count) { return std::to_string(count); });
}
std::string state(const ProcInfo& p, const Known&) { return std::string(p.state.view()); }
std::string path(const ProcInfo& p, const Known&) {
    return std::string(p.path.empty() ? unknown : p.path.view());
}

constexpr std::array<ProcessColumn, 10> columns{{
    {"PID", 7, Align::right, 2, Ink::dim, ProcessOrder::pid, pid},
    {"Name", 15, Align::left, 0, Ink::text, ProcessOrder::name, name},
    {"User", 9, Align::left, 4, Ink::dim, {}, user},
    {"CPU %", 6, Align::right, 0, Ink::cpu, ProcessOrder::cpu, cpu},
    {"Memory", 8, Align::right, 1, Ink::memory, ProcessOrder::memory, memory},
    {"Disk", 9, Align::right, 3, Ink::disk, ProcessOrder::disk, disk},
    {"CPU time", 8, Align::right, 5, Ink::text, {}, cpuTime},
    {"Threads", 7, Align::right, 6, Ink::text, {}, threads},
    {"State", 8, Align::left, 7, Ink::dim, {}, state},
    {"Path", 28, Align::left, 8, Ink::dim, {}, path},
}};
constexpr int gap = 2;
constexpr int lastRank = 8;

} // namespace

std::span<const ProcessColumn> processColumns() { return columns; }

std::vector<PlacedColumn> columnsFor(int cells) {
    std::vector<PlacedColumn> placed;
    int spare = 0;
    for (int rank = lastRank; rank >= 0; --rank) {
        placed.clear();
        spare = cells + gap;
        for (const ProcessColumn& column : columns) {
            if (column.rank > rank) continue;
            placed.push_back({&column, 0, column.width});
            spare -= column.width + gap;
        }
        if (spare >= 0) break;
    }
    // Names rarely need more than twice their least width; paths can be of any length.
    const bool withPath = placed.back().column->text == path;
    int begin = 0;
    for (PlacedColumn& place : placed) {
        if (place.column->text == name) {
            const int share = withPath ? std::min(spare / 2, place.width) : spare;
            place.width = std::max(place.width + share, 1);
            spare -= share;
        } else if (place.column->text == path) {
            place.width += spare;
        }
        place.begin = begin;
        begin += place.width + gap;
    }
    return placed;
}

} // namespace quarn::cli
