#include "monitor/ProcessOwners.h"

#include <limits>

namespace quarn {

namespace {

constexpr double settledAfter = 5;   ///< seconds of a process's life
constexpr size_t mostStale = 64;     ///< answers replaced in one update after applications changed
constexpr size_t turnsForAll = 1024; ///< updates in which every process had its turn

} // namespace

void ProcessOwners::ask(ProcessOwner& owner, const ProcInfo& process, double now) {
    const double startedAt =
        process.startTimeMicros ? static_cast<double>(*process.startTimeMicros) / 1e6 : 0;
    owner.pid = process.pid;
    owner.start = process.startTimeMicros;
    owner.path = process.path;
    owner.revision = revision_;
    const bool isYoung = now >= startedAt && now < startedAt + settledAfter;
    owner.askAgainAt = isYoung ? startedAt + settledAfter : std::numeric_limits<double>::infinity();
    owner.bundle = index_->bundleOf({process.pid, process.ppid, process.name, process.path});
    owner.app = owner.bundle ? *owner.bundle : shared(sysinfo::executableName(process.name, process.path));
}

Text ProcessOwners::shared(std::string_view name) {
    constexpr size_t most = 4096;
    if (names_.size() >= most) names_.clear();
    const auto [place, isNew] = names_.try_emplace(std::string(name));
    if (isNew) place->second = name;
    return place->second;
}

void ProcessOwners::bringUpToDate(ProcessOwner& owner, const ProcInfo& process, Reason reason, double now) {
    const bool isSame =
        owner.pid == process.pid && owner.start == process.startTimeMicros && owner.path == process.path;
    if (isSame && reason == Reason::newList && now < owner.askAgainAt) {
        if (owner.revision == revision_ || staleBudget_ == 0) return;
        --staleBudget_;
    }
    ask(owner, process, now);
}

std::span<const ProcessOwner> ProcessOwners::update(std::span<const ProcInfo> processes, double now) {
    revision_ = index_->revision(now);
    staleBudget_ = mostStale;
    turn_ = (turn_ + 1) % turnsForAll;
    size_t same = 0;
    while (same < owners_.size() && same < processes.size() && owners_[same].pid == processes[same].pid)
        ++same;
    former_.assign(std::make_move_iterator(owners_.begin() + static_cast<ptrdiff_t>(same)),
                   std::make_move_iterator(owners_.end()));
    owners_.resize(processes.size());
    auto before = former_.begin();
    for (size_t i = 0; i < processes.size(); ++i) {
        if (i >= same) {
            while (before != former_.end() && before->pid < processes[i].pid) ++before;
            const bool isKnown = before != former_.end() && before->pid == processes[i].pid;
            owners_[i] = isKnown ? std::move(*before++) : ProcessOwner();
        }
        const Reason reason = i % turnsForAll == turn_ ? Reason::turn : Reason::newList;
        bringUpToDate(owners_[i], processes[i], reason, now);
    }
    return owners_;
}

} // namespace quarn
