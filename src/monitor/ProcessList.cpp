#include "monitor/ProcessList.h"

#include "core/ProcessSampler.h"

#include <algorithm>

namespace quarn {

namespace {

/// What the records of the sampler and of the helper have in common.
template <class Record>
ProcInfo commonFields(const Record& from) {
    ProcInfo to;
    to.pid = from.pid;
    to.ppid = from.ppid;
    to.uid = from.uid;
    to.name = from.name;
    to.user = from.user;
    to.state = from.state;
    to.path = from.path;
    to.cpuPercent = from.cpuPercent;
    to.memBytes = from.memBytes;
    to.threads = from.threads;
    to.cpuTimeNs = from.cpuTimeNs;
    to.accessible = from.accessible;
    to.diskRead = from.diskRead;
    to.diskWrite = from.diskWrite;
    to.contextSwitches = from.contextSwitches;
    return to;
}

} // namespace

std::vector<ProcInfo> fromSampler(const std::vector<sysinfo::ProcessInfo>& processes) {
    std::vector<ProcInfo> list;
    list.reserve(processes.size());
    for (const auto& from : processes) {
        auto& to = list.emplace_back(commonFields(from));
        if (from.startTimeMicros) {
            to.startTime = from.startTime;
            to.startTimeMicros = from.startTimeMicros;
        }
        if (from.energyKnown) to.energyNj = from.energyNj;
        to.ioKnown = from.ioKnown;
    }
    return list;
}

std::vector<ProcInfo> fromHelper(const HelperProcessList& processes) {
    std::vector<ProcInfo> list;
    list.reserve(processes.processes.size());
    for (const auto& from : processes.processes) {
        auto& to = list.emplace_back(commonFields(from));
        to.startTime = from.startTime;
        to.startTimeMicros = from.startTimeMicros;
        to.energyNj = from.energyNj;
        to.ioKnown = from.accessible; // the helper may read what it may inspect
    }
    std::sort(list.begin(), list.end(), [](const ProcInfo& a, const ProcInfo& b) { return a.pid < b.pid; });
    return list;
}

} // namespace quarn
