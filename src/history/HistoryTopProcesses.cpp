#include "history/HistoryTopProcesses.h"

#include "history/HistoryTime.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarn {

namespace {

constexpr double noShare = 0.005; ///< percent; below, a process counts as idle

/// The weight of a new value in a moving average whose last value is `elapsed` seconds old.
double weightAfter(double elapsed) {
    constexpr double shortest = 0.1, longest = 60; // whatever is done to the clock
    return 1 - std::exp(-std::clamp(elapsed, shortest, longest) / HistoryTopProcesses::smoothing);
}

} // namespace

const SharedList<HistoryProc>& HistoryTopProcesses::update(const Snapshot& snapshot) {
    if (snapshot.processGeneration == generation_) return top_;
    generation_ = snapshot.processGeneration;
    const double elapsed = secondsBetween(std::exchange(listedAt_, snapshot.timestamp), snapshot.timestamp);
    advance(snapshot.processes, weightAfter(elapsed));
    rank();
    return top_;
}

void HistoryTopProcesses::advance(const SharedList<ProcInfo>& processes, double weight) {
    next_.clear();
    size_t at = 0;
    for (const ProcInfo& process : processes) {
        while (at < averages_.size() && averages_[at].pid < process.pid) ++at;
        const bool sameAsBefore = at < averages_.size() && averages_[at].pid == process.pid &&
                                  averages_[at].start == process.startTimeMicros;
        const double before = sameAsBefore ? averages_[at].cpu : 0;
        const double average = before + weight * (process.cpuPercent - before);
        if (process.cpuPercent > 0 || average >= noShare)
            next_.push_back({process.pid, process.startTimeMicros, average, &process});
    }
    std::swap(averages_, next_);
}

void HistoryTopProcesses::rank() {
    std::array<const Average*, count + 1> best{};
    size_t found = 0;
    for (const Average& average : averages_) {
        size_t place = found;
        for (; place > 0 && best[place - 1]->cpu < average.cpu; --place) best[place] = best[place - 1];
        best[place] = &average;
        found = std::min(found + 1, count);
    }
    std::vector<HistoryProc> top;
    top.reserve(found);
    for (size_t i = 0; i < found; ++i) {
        const ProcInfo& process = *best[i]->process;
        top.push_back({process.pid, process.name, process.cpuPercent, process.memBytes, process.accessible});
    }
    top_ = std::move(top);
}

} // namespace quarn
