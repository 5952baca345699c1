#include "monitor/ProcessList.h"

#include "core/ProcessSampler.h"

#include <algorithm>

namespace quarn {

namespace {

/// Everything that the records of the sampler and of the helper have in common; the rest of `to` is reset but
/// keeps texts that are the same.
template <class Record>
void takeCommonFields(const Record& from, ProcInfo& to) {
    ProcInfo fresh;
    const auto take = [](Text& target, Text& former, const auto& text) {
        target = std::move(former);
        target = text;
    };
    take(fresh.name, to.name, from.name);
    take(fresh.user, to.user, from.user);
    take(fresh.state, to.state, from.state);
    take(fresh.path, to.path, from.path);
    fresh.pid = from.pid;
    fresh.ppid = from.ppid;
    fresh.uid = from.uid;
    fresh.cpuPercent = from.cpuPercent;
    fresh.memBytes = from.memBytes;
    fresh.threads = from.threads;
    fresh.cpuTimeNs = from.cpuTimeNs;
    fresh.accessible = from.accessible;
    fresh.diskRead = from.diskRead;
    fresh.diskWrite = from.diskWrite;
    fresh.contextSwitches = from.contextSwitches;
    to = std::move(fresh);
}

} // namespace

void fromSampler(const std::vector<sysinfo::ProcessInfo>& processes, std::vector<ProcInfo>& list) {
    list.resize(processes.size());
    auto to = list.begin();
    for (const auto& from : processes) {
        takeCommonFields(from, *to);
        if (from.startTimeMicros) {
            to->startTime = from.startTime;
            to->startTimeMicros = from.startTimeMicros;
        }
        if (from.energyKnown) to->energyNj = from.energyNj;
        to->ioKnown = from.ioKnown;
        ++to;
    }
}

std::vector<ProcInfo> fromHelper(const HelperProcessList& processes) {
    std::vector<ProcInfo> list;
    list.reserve(processes.processes.size());
    for (const auto& from : processes.processes) {
        auto& to = list.emplace_back();
        takeCommonFields(from, to);
        to.startTime = from.startTime;
        to.startTimeMicros = from.startTimeMicros;
        to.energyNj = from.energyNj;
        to.ioKnown = from.accessible; // the helper may read what it may inspect
    }
    std::sort(list.begin(), list.end(), [](const ProcInfo& a, const ProcInfo& b) { return a.pid < b.pid; });
    return list;
}

} // namespace quarn
