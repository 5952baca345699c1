#include "monitor/AppProcessCounters.h"

#include <algorithm>

namespace quarn {

namespace {

/// A counter that fell grew by nothing.
uint64_t grown(uint64_t before, uint64_t now) { return now > before ? now - before : 0; }

} // namespace

void AppProcessCounters::begin(size_t expecting) {
    std::swap(baselines_, next_);
    const auto byPid = [](const Baseline& a, const Baseline& b) { return a.pid < b.pid; };
    if (!std::is_sorted(baselines_.begin(), baselines_.end(), byPid))
        std::sort(baselines_.begin(), baselines_.end(), byPid);
    next_.clear();
    next_.reserve(expecting);
    energyApps_.clear();
    at_ = 0;
}

const AppProcessCounters::Baseline* AppProcessCounters::find(int64_t pid) {
    while (at_ < baselines_.size() && baselines_[at_].pid < pid) ++at_;
    if (at_ < baselines_.size() && baselines_[at_].pid == pid) return &baselines_[at_++];
    const auto found =
        std::lower_bound(baselines_.begin(), baselines_.end(), pid,
                         [](const Baseline& each, int64_t wanted) { return each.pid < wanted; });
    return found != baselines_.end() && found->pid == pid ? &*found : nullptr;
}

AppProcessCounters::Growth AppProcessCounters::growthBetween(const Baseline& before, const ProcInfo& now) {
    Growth growth;
    if (!before.accessible || !now.accessible) return growth;
    growth.cpuNs = grown(before.cpuNs, now.cpuTimeNs);
    growth.contextSwitches = grown(before.contextSwitches, now.contextSwitches);
    if (before.ioKnown && now.ioKnown) {
        growth.diskRead = grown(before.diskRead, now.diskRead);
        growth.diskWrite = grown(before.diskWrite, now.diskWrite);
    }
    growth.energyKnown = before.energyNj && now.energyNj;
    if (growth.energyKnown) growth.energyNj = grown(*before.energyNj, *now.energyNj);
    return growth;
}

void AppProcessCounters::record(const ProcInfo& process, const Text& app, const OnGrowth& onGrowth) {
    const Baseline* before = find(process.pid);
    if (before && before->start == process.startTimeMicros) {
        const Growth growth = growthBetween(*before, process);
        if (growth.energyKnown) energyApps_.insert(app);
        const bool didAnything = (growth.cpuNs | growth.diskRead | growth.diskWrite | growth.contextSwitches |
                                  growth.energyNj) != 0;
        if (didAnything) onGrowth(app, growth);
    }
    next_.push_back({process.pid, process.startTimeMicros, process.accessible, process.ioKnown,
                     process.cpuTimeNs, process.diskRead, process.diskWrite, process.contextSwitches,
                     process.energyNj});
}

void AppProcessCounters::sample(std::span<const ProcInfo> processes, std::span<const ProcessOwner> owners,
                                Memory& memory, const OnGrowth& onGrowth) {
    const size_t count = std::min(processes.size(), owners.size());
    begin(count);
    memBytes_.clear();
    for (size_t i = 0; i < count; ++i) {
        const size_t number = apps_.number(owners[i].app);
        if (number == memBytes_.size()) memBytes_.push_back(0);
        memBytes_[number] += processes[i].memBytes;
        record(processes[i], owners[i].app, onGrowth);
    }
    memory.clear();
    for (size_t number = 0; number < apps_.size(); ++number)
        memory.emplace(apps_.text(number), memBytes_[number]);
    apps_.clear(); // it points into the list of owners
}

} // namespace quarn
