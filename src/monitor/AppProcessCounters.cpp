#include "monitor/AppProcessCounters.h"

#include <algorithm>

namespace quarn {

namespace {

/// A counter that fell grew by nothing.
uint64_t grown(uint64_t before, uint64_t now) { return now > before ? now - before : 0; }

} // namespace

void AppProcessCounters::begin(size_t expecting) {
    std::swap(baselines_, before_);
    const auto byPid = [](const Baseline& a, const Baseline& b) { return a.pid < b.pid; };
    if (!std::is_sorted(before_.begin(), before_.end(), byPid))
        std::sort(before_.begin(), before_.end(), byPid);
    baselines_.clear();
    baselines_.reserve(expecting);
    at_ = 0;
}

const AppProcessCounters::Baseline* AppProcessCounters::find(int64_t pid) {
    while (at_ < before_.size() && before_[at_].pid < pid) ++at_;
    if (at_ < before_.size() && before_[at_].pid == pid) return &before_[at_++];
    const auto found =
        std::lower_bound(before_.begin(), before_.end(), pid,
                         [](const Baseline& each, int64_t wanted) { return each.pid < wanted; });
    return found != before_.end() && found->pid == pid ? &*found : nullptr;
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

AppProcessCounters::Growth AppProcessCounters::record(const ProcInfo& process) {
    const Baseline* before = find(process.pid);
    const bool isSame = before && before->start == process.startTimeMicros;
    baselines_.push_back({process.pid, process.startTimeMicros, process.accessible, process.ioKnown,
                          process.cpuTimeNs, process.diskRead, process.diskWrite, process.contextSwitches,
                          process.energyNj});
    return isSame ? growthBetween(*before, process) : Growth();
}

std::span<const AppActivity> AppProcessCounters::sample(std::span<const ProcInfo> processes,
                                                        std::span<const ProcessOwner> owners) {
    const size_t count = std::min(processes.size(), owners.size());
    begin(count);
    apps_.clear();
    activity_.clear();
    for (size_t i = 0; i < count; ++i) {
        const size_t number = apps_.number(owners[i].app);
        if (number == activity_.size()) activity_.push_back({owners[i].app, 0, {}});
        activity_[number].memBytes += processes[i].memBytes;
        activity_[number].growth += record(processes[i]);
    }
    return activity_;
}

} // namespace quarn
