#include "cli/PlainSnapshot.h"

#include "cli/ProcessColumns.h"
#include "cli/view/MeterList.h"
#include "ui/modules/Format.h"
#include "ui/modules/StateSentence.h"

#include <array>
#include <fmt/format.h>
#include <unistd.h>

namespace quarn::cli {
namespace {

constexpr size_t busiest = 10;
constexpr size_t coresPerLine = 16;
constexpr size_t mostCores = 128; ///< more would bury the rest; JSON has them all

void addMeter(TextTable& table, const Meter& meter) {
    std::string facts;
    for (const Fact& fact : meter.facts) facts += (facts.empty() ? "" : "   ") + fact.text;
    table.add({std::string(meter.label), meter.figure, facts});
}

std::string coreShares(const std::vector<double>& shares) {
    std::string text;
    for (size_t core = 0; core < shares.size(); ++core) {
        if (core % coresPerLine == 0) text += fmt::format("{}Core {:>3} ", core == 0 ? "" : "\n", core);
        text += fmt::format(" {:>3.0f}", shares[core]);
    }
    return text + "\n";
}

} // namespace

std::string machineName(const sysinfo::SystemRoot& root) {
    if (!root.isHost()) return root.directory().substr(root.directory().rfind('/') + 1);
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0) return {};
    return name.data();
}

std::string plainSnapshot(const Snapshot& snapshot, const Known& known, const std::string& host,
                          Charset charset) {
    std::string text = host;
    if (known.uptime) text += (host.empty() ? "up " : ", up ") + format::duration(snapshot.uptime);
    if (known.cpu) text += (text.empty() ? "" : ": ") + stateSentence(snapshot, known);
    text = fitted(text, 1000, charset) + "\n\n";

    TextTable meters({{}, {{}, Align::right}, {}}, charset);
    addMeter(meters, cpuMeter(snapshot, known));
    for (const Meter& meter : otherMeters(snapshot, known, nullptr)) addMeter(meters, meter);
    text += meters.text().substr(1); // the titles are empty
    const auto& shares = snapshot.cpu.perCore;
    if (known.cpu && shares.size() > 1 && shares.size() <= mostCores) text += "\n" + coreShares(shares);
    if (snapshot.processes.empty()) return text;

    text += "\nBusiest processes\n\n";
    return text + plainProcesses(snapshot, known, ProcessOrder::cpu, busiest, charset);
}

std::string plainProcesses(const Snapshot& snapshot, const Known& known, ProcessOrder order, size_t limit,
                           Charset charset) {
    std::vector<TextTable::Column> titles;
    for (const ProcessColumn& column : processColumns()) titles.push_back({column.title, column.align});
    TextTable table(std::move(titles), charset);
    for (const ProcInfo* process : ordered(snapshot.processes, order, limit, known)) {
        std::vector<std::string> cells;
        for (const ProcessColumn& column : processColumns()) cells.push_back(column.text(*process, known));
        table.add(std::move(cells));
    }
    return table.text();
}

} // namespace quarn::cli
