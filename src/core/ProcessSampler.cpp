#include "core/ProcessSampler.h"

#include <array>

namespace sysinfo {

namespace {

const Text& stateText(const platform::KernelProcess& process) {
    using RunState = platform::KernelProcess::RunState;
    static const Text starting("Starting"), running("Running"), sleeping("Sleeping"), stopped("Stopped"),
        zombie("Zombie"), unknown("—");
    switch (process.state) {
    case RunState::starting: return starting;
    case RunState::stopped: return stopped;
    case RunState::zombie: return zombie;
    case RunState::running: return process.measured ? running : unknown;
    case RunState::sleeping: return process.measured ? sleeping : unknown;
    case RunState::unknown: break;
    }
    return unknown;
}

} // namespace

const Text& UserNames::name(uint32_t uid) {
    const auto found = names_.find(uid);
    if (found != names_.end()) return found->second;
    const auto account = platform::userName(root_, uid);
    return names_.emplace(uid, Text(account ? *account : std::to_string(uid))).first->second;
}

std::string_view displayName(std::string_view shortName, std::string_view path) {
    constexpr size_t longestWholeName = 15; // kernels keep 15 or 16 bytes; a longer name may have been cut
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const bool better = shortName.size() > longestWholeName || file.size() > shortName.size();
    return !file.empty() && better ? file : shortName;
}

ProcessInfo ProcessSampler::describe(const platform::KernelProcess& process) {
    ProcessInfo info;
    info.pid = process.pid;
    info.ppid = process.ppid;
    info.uid = process.uid;
    info.path = process.path;
    const auto name = displayName(process.shortName, process.path);
    info.name = name == process.shortName.view() ? process.shortName : Text(name);
    if (process.pid == 0 && info.name.empty()) info.name = "kernel_task";
    info.user = users_.name(process.uid);
    info.state = stateText(process);
    info.memBytes = process.memBytes;
    info.threads = process.threads;
    info.cpuTimeNs = process.cpuTimeNs;
    info.contextSwitches = process.contextSwitches;
    info.diskRead = process.diskRead;
    info.diskWrite = process.diskWrite;
    info.energyNj = process.energyNj;
    info.energyKnown = process.measured && process.energyNj != 0;
    info.startTimeMicros = process.startTimeMicros;
    info.startTime = process.startTimeMicros / 1'000'000;
    info.accessible = process.measured;
    info.ioKnown = process.ioKnown;
    info.revision = process.revision;
    return info;
}

void ProcessSampler::update(ProcessInfo& info, const platform::KernelProcess& process, double elapsed) {
    const bool known = info.revision != 0 && info.startTimeMicros == process.startTimeMicros;
    const uint64_t before = info.cpuTimeNs;
    if (!known || info.revision != process.revision) info = describe(process);
    info.cpuPercent = known && info.accessible && elapsed > 0 && info.cpuTimeNs >= before
                          ? static_cast<double>(info.cpuTimeNs - before) * 100 / elapsed
                          : 0;
    totalThreads_ += info.threads;
}

const std::vector<ProcessInfo>& ProcessSampler::sample(platform::Readers& readers) {
    const uint64_t nowNs = platform::monotonicRawNs();
    const auto table = platform::readProcesses(readers);
    if (!table) {
        static const std::vector<ProcessInfo> none;
        return none;
    }
    return advance(*table, nowNs);
}

const std::vector<ProcessInfo>& ProcessSampler::advance(std::span<const platform::KernelProcess> table,
                                                        uint64_t nowNs) {
    const double elapsed = lastSampleNs_ == 0 ? 0 : static_cast<double>(nowNs - lastSampleNs_);
    totalThreads_ = 0;

    // From one call to the next most pids stay where they are: those entries are updated in place.
    size_t at = 0;
    for (; at < table.size() && at < current_.size() && current_[at].pid == table[at].pid; ++at)
        update(current_[at], table[at], elapsed);

    // From the first other pid on, one walk over both lists, which ascend by pid.
    former_.assign(std::make_move_iterator(current_.begin() + static_cast<ptrdiff_t>(at)),
                   std::make_move_iterator(current_.end()));
    current_.resize(at);
    auto old = former_.begin();
    for (const auto& process : table.subspan(at)) {
        while (old != former_.end() && old->pid < process.pid) ++old;
        const bool paired = old != former_.end() && old->pid == process.pid;
        update(current_.emplace_back(paired ? std::move(*old) : ProcessInfo()), process, elapsed);
    }
    lastSampleNs_ = nowNs;
    return current_;
}

} // namespace sysinfo
