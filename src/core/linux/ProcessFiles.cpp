#include "core/linux/ProcessFiles.h"

#include "core/Scan.h"

#include <unistd.h>

namespace sysinfo::platform {

std::string processFile(const SystemRoot& root, int64_t pid, std::string_view name) {
    return root.path("proc/" + std::to_string(pid) + "/").append(name);
}

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
    const size_t open = text.find('(');
    const size_t close = text.rfind(')'); // the name itself may hold brackets
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
    ProcessStat stat;
    stat.comm = text.substr(open + 1, close - open - 1);
    std::string_view rest = scutil::trimmed(text.substr(close + 1));
    const std::string_view state = scutil::takeWord(rest);
    if (state.size() != 1) return {};
    stat.state = state.front();
    // Columns as proc(5) numbers them; the state is the third.
    enum Column {
        ppid = 4,
        terminal = 7,
        flags = 9,
        utime = 14,
        stime = 15,
        nice = 19,
        threads = 20,
        starttime = 22
    };
    for (int column = ppid; column <= starttime; ++column) {
        const std::string_view word = scutil::takeWord(rest);
        if (word.empty()) return {};
        const auto number = [&] { return scutil::toNumber<uint64_t>(word).value_or(0); };
        switch (column) {
        case ppid: stat.ppid = scutil::toNumber<int32_t>(word).value_or(0); break;
        case terminal: stat.terminal = scutil::toNumber<int32_t>(word).value_or(0); break;
        case flags: stat.flags = scutil::toNumber<uint32_t>(word).value_or(0); break;
        case utime:
        case stime: stat.cpuTicks += number(); break;
        case nice: stat.nice = scutil::toNumber<int>(word).value_or(0); break;
        case threads: stat.threads = static_cast<uint32_t>(number()); break;
        case starttime: stat.startTicks = number(); break;
        default: break;
        }
    }
    return stat;
}

ProcessStatus parseProcessStatus(std::string_view text) {
    ProcessStatus status;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const std::string_view key = scutil::takeUntil(line, ':');
        if (key == "Uid") {
            scutil::takeWord(line);
            if (const auto uid = scutil::toNumber<uint32_t>(scutil::takeWord(line))) {
                status.effectiveUid = *uid;
                status.uidKnown = true;
            }
        } else if (key == "VmRSS") {
            status.resident = scutil::takeNumber(line) * 1024;
        } else if (key == "RssAnon") {
            status.anonymous = scutil::takeNumber(line) * 1024;
        } else if (key == "VmSwap") {
            status.swapped = scutil::takeNumber(line) * 1024;
        } else if (key == "voluntary_ctxt_switches" || key == "nonvoluntary_ctxt_switches") {
            status.contextSwitches += scutil::takeNumber(line);
        }
    }
    return status;
}

std::optional<ProcessIo> parseProcessIo(std::string_view text) {
    std::optional<uint64_t> read, written;
    while (!text.empty()) {
        std::string_view line = scutil::takeLine(text);
        const std::string_view key = scutil::takeUntil(line, ':');
        if (key == "read_bytes") read = scutil::toNumber<uint64_t>(scutil::takeWord(line));
        if (key == "write_bytes") written = scutil::toNumber<uint64_t>(scutil::takeWord(line));
    }
    if (!read || !written) return {};
    return ProcessIo{*read, *written};
}

std::vector<std::string> parseCommandLine(std::string_view text) {
    while (text.ends_with('\0')) text.remove_suffix(1);
    std::vector<std::string> arguments;
    while (!text.empty()) arguments.emplace_back(scutil::takeUntil(text, '\0'));
    return arguments;
}

uint64_t startMicros(uint64_t bootSeconds, uint64_t startTicks) {
    static const auto ticksPerSecond = static_cast<uint64_t>(::sysconf(_SC_CLK_TCK));
    return bootSeconds * 1'000'000 + startTicks / ticksPerSecond * 1'000'000 +
           startTicks % ticksPerSecond * 1'000'000 / ticksPerSecond;
}

} // namespace sysinfo::platform
