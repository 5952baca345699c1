#include "ui/modules/ProcessFields.h"

#include "ui/modules/Format.h"

#include <array>
#include <cmath>
#include <ctime>

namespace quarn {

namespace {

/// "14:03:22" within the last day, otherwise "2026-03-12 14:03".
std::string startText(uint64_t seconds, WallTime now) {
    const auto start = static_cast<std::time_t>(seconds);
    const std::time_t current = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    if (!::localtime_r(&start, &local)) return std::string(format::unknown);
    constexpr std::time_t day = 86'400;
    std::array<char, 32> text;
    const bool isRecent = start <= current && current - start < day;
    const size_t length =
        std::strftime(text.data(), text.size(), isRecent ? "%H:%M:%S" : "%Y-%m-%d %H:%M", &local);
    return {text.data(), length};
}

} // namespace

bool isText(ProcessField field) {
    switch (field) {
    case ProcessField::name:
    case ProcessField::user:
    case ProcessField::state:
    case ProcessField::path: return true;
    default: return false;
    }
}

double processNumber(const ProcInfo& process, ProcessField field, const Known& known) {
    const auto measured = [&](double value) { return process.accessible ? value : format::notKnown; };
    const auto rate = [&](double value) { return known.processRates ? measured(value) : format::notKnown; };
    const auto diskRate = [&](double value) { return process.ioKnown ? rate(value) : format::notKnown; };
    switch (field) {
    case ProcessField::pid: return static_cast<double>(process.pid);
    case ProcessField::cpu: return rate(process.cpuPercent);
    case ProcessField::memory: return measured(static_cast<double>(process.memBytes));
    case ProcessField::diskRead: return diskRate(process.diskReadRate);
    case ProcessField::diskWritten: return diskRate(process.diskWriteRate);
    case ProcessField::cpuTime: return measured(static_cast<double>(process.cpuTimeNs));
    case ProcessField::threads: return measured(static_cast<double>(process.threads));
    case ProcessField::switches: return rate(process.cswRate);
    case ProcessField::started:
        return process.startTimeMicros ? static_cast<double>(*process.startTimeMicros) : format::notKnown;
    case ProcessField::parent: return static_cast<double>(process.ppid);
    default: return format::notKnown;
    }
}

std::string_view processText(const ProcInfo& process, ProcessField field) {
    switch (field) {
    case ProcessField::name: return process.name;
    case ProcessField::user: return process.user;
    case ProcessField::state: return process.state;
    case ProcessField::path: return process.path;
    default: return {};
    }
}

std::string shownField(const ProcInfo& process, ProcessField field, const Known& known, WallTime now) {
    if (isText(field)) {
        const std::string_view text = processText(process, field);
        if (field == ProcessField::user && text.empty()) return std::to_string(process.uid);
        return std::string(text.empty() ? format::unknown : text);
    }
    const double number = processNumber(process, field, known);
    if (std::isnan(number)) return std::string(format::unknown);
    switch (field) {
    case ProcessField::cpu: return format::percentFigure(number);
    case ProcessField::memory: return format::memory(process.memBytes);
    case ProcessField::diskRead:
    case ProcessField::diskWritten: return format::rate(number);
    case ProcessField::cpuTime: return format::shortDuration(number / 1e9);
    case ProcessField::started: return startText(*process.startTime, now);
    default: return std::to_string(std::llround(number));
    }
}

std::string_view whyUnknown(const ProcInfo& process, ProcessField field, const Known& known) {
    if (isText(field)) {
        if (field != ProcessField::path || !process.path.empty()) return {};
        return "A thread of the kernel, or a program of another user whose path may not be read.";
    }
    if (!std::isnan(processNumber(process, field, known))) return {};
    if (!process.accessible)
        return "The kernel tells nothing of this process to your user. Needs the helper.";
    const bool isDisk = field == ProcessField::diskRead || field == ProcessField::diskWritten;
    if (isDisk && !process.ioKnown)
        return "Only the owner of a process and the administrator may read this. Needs the helper.";
    return "A rate needs two samples.";
}

} // namespace quarn
