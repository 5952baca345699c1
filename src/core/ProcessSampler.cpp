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
    return info;
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
    std::swap(current_, previous_);
    std::swap(revisions_, previousRevisions_);
    current_.clear();
    revisions_.clear();
    current_.reserve(table.size());
    revisions_.reserve(table.size());
    totalThreads_ = 0;

    // Both lists ascend by pid: one walk pairs each process with its former self.
    size_t old = 0;
    for (const auto& process : table) {
        if (process.pid < 0) continue;
        while (old < previous_.size() && previous_[old].pid < process.pid) ++old;
        const bool known = old < previous_.size() && previous_[old].pid == process.pid &&
                           previous_[old].startTimeMicros == process.startTimeMicros;
        const uint64_t before = known ? previous_[old].cpuTimeNs : 0;
        if (known && previousRevisions_[old] == process.revision)
            current_.push_back(std::move(previous_[old]));
        else
            current_.push_back(describe(process));
        auto& info = current_.back();
        info.cpuPercent = known && info.accessible && elapsed > 0 && info.cpuTimeNs >= before
                              ? static_cast<double>(info.cpuTimeNs - before) * 100 / elapsed
                              : 0;
        revisions_.push_back(process.revision);
        totalThreads_ += info.threads;
    }
    lastSampleNs_ = nowNs;
    return current_;
}

} // namespace sysinfo
