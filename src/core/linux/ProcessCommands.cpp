// What is asked and done about one process that a person has chosen.
#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/linux/ProcessFiles.h"
#include "core/platform.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sysinfo::platform {

namespace {

/// By number, since the C library of the oldest systems has no name for them.
scutil::UniqueFd openProcess(int32_t pid) {
    return scutil::UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

ProcessAnswer answerOf(int error) {
    switch (error) {
    case ESRCH: return ProcessAnswer::gone;
    case EPERM:
    case EACCES: return ProcessAnswer::denied;
    default: return ProcessAnswer::failed;
    }
}

bool isStillThere(const SystemRoot& root, const ProcessInstance& process) {
    const auto text = readTable(processFile(root, process.pid, "stat"));
    const auto stat = text ? parseProcessStat(*text) : std::nullopt;
    return stat && startMicros(process.bootTime, stat->startTicks) == process.startTimeMicros;
}

} // namespace

std::optional<std::vector<std::string>> processCommandLine(const SystemRoot& root, int32_t pid) {
    const auto text = readTable(processFile(root, pid, "cmdline"));
    return text ? std::optional(parseCommandLine(*text)) : std::nullopt;
}

std::optional<std::string> processWorkingFolder(const SystemRoot& root, int32_t pid) {
    return readLink(processFile(root, pid, "cwd"));
}

std::optional<int> processPriority(const SystemRoot& root, int32_t pid) {
    const auto text = readTable(processFile(root, pid, "stat"));
    const auto stat = text ? parseProcessStat(*text) : std::nullopt;
    return stat ? std::optional(stat->nice) : std::nullopt;
}

ProcessAnswer signalProcess(const SystemRoot& root, const ProcessInstance& process, int signal) {
    // 0 and negative numbers would mean groups of processes.
    if (!root.isHost() || process.pid <= 0) return ProcessAnswer::failed;
    // The descriptor stands for one process for good, so what is true of it now stays true.
    const auto target = openProcess(process.pid);
    if (!target) return answerOf(errno);
    if (!isStillThere(root, process)) return ProcessAnswer::gone;
    if (::syscall(SYS_pidfd_send_signal, target.get(), signal, nullptr, 0) == 0) return ProcessAnswer::done;
    return answerOf(errno);
}

ProcessAnswer setProcessPriority(const SystemRoot& root, const ProcessInstance& process, int nice) {
    if (!root.isHost() || process.pid <= 0) return ProcessAnswer::failed;
    if (!isStillThere(root, process)) return ProcessAnswer::gone;
    // The kernel keeps one value for each thread; new threads take that of their maker.
    int error = 0;
    for (const auto& thread : listFolder(processFile(root, process.pid, "task"))) {
        const auto id = scutil::toNumber<id_t>(thread);
        if (id && ::setpriority(PRIO_PROCESS, *id, nice) != 0 && errno != ESRCH) error = errno;
    }
    return error == 0 ? ProcessAnswer::done : answerOf(error);
}

} // namespace sysinfo::platform
