#pragma once

#include <limits>

namespace sysinfo::platform {

/// Decides when a session with NVIDIA's library may be open, given that an open one keeps every NVIDIA GPU
/// awake. A value; times are seconds on any steady scale.
///
/// - A GPU that sleeps is never woken: no session opens while one does.
/// - Where GPUs can sleep, a session that has seen them idle for `idleBeforeClosing` closes, and stays closed
///   for `pauseForSleep`: time enough to fall asleep, unless another program keeps them awake.
/// - Where they cannot, a session does no harm and stays.
class NvidiaGate {
public:
    static constexpr double idleBeforeClosing = 6;
    static constexpr double pauseForSleep = 20;

    struct State {
        bool asleep = false;   ///< some NVIDIA GPU is
        bool canSleep = false; ///< some NVIDIA GPU would, if left alone
    };

    /// Whether a session should be open at `now`.
    bool mayOpen(double now, const State& state);
    /// Notes what an open session saw.
    void saw(double now, bool busy);

private:
    static constexpr double never = -std::numeric_limits<double>::infinity();

    double idleSince_ = never;
    double closedAt_ = never;
    bool idle_ = false;
};

} // namespace sysinfo::platform
