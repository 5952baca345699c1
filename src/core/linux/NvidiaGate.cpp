#include "core/linux/NvidiaGate.h"

namespace sysinfo::platform {

bool NvidiaGate::mayOpen(double now, const State& state) {
    if (state.asleep) {
        // Whoever wakes them has work for them.
        closedAt_ = never;
        idle_ = false;
        return false;
    }
    if (!state.canSleep) return true;
    if (now - closedAt_ < pauseForSleep) return false;
    if (idle_ && now - idleSince_ >= idleBeforeClosing) {
        closedAt_ = now;
        idle_ = false;
        return false;
    }
    return true;
}

void NvidiaGate::saw(double now, bool busy) {
    if (!busy && !idle_) idleSince_ = now;
    idle_ = !busy;
}

} // namespace sysinfo::platform
