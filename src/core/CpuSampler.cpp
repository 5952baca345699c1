#include "core/CpuSampler.h"

namespace sysinfo {

uint32_t tickIncrement(uint64_t previous, uint64_t current) {
    const auto difference = static_cast<uint32_t>(current - previous);
    const bool wentDown = current < previous && difference > UINT32_MAX / 2;
    return wentDown ? 0 : difference;
}

CpuStats CpuSampler::sample(platform::Readers& readers) {
    if (!platform::readCpuTicks(readers, current_)) return {};
    return advance(current_);
}

CpuStats CpuSampler::advance(platform::CpuTicks& current) {
    CpuStats stats;
    const size_t count = current.ids.size();
    stats.perCore.assign(count, 0.0);
    stats.perCoreSystem.assign(count, 0.0);

    double userSum = 0, systemSum = 0, idleSum = 0, allSum = 0;
    for (size_t i = 0; i < count && previous_.ids == current.ids; ++i) {
        using enum platform::CpuTicks::Kind;
        const auto step = [&](platform::CpuTicks::Kind kind) -> uint64_t {
            return tickIncrement(previous_.ticks[4 * i + kind], current.ticks[4 * i + kind]);
        };
        const uint64_t busy = step(user) + step(system) + step(nice);
        const uint64_t all = busy + step(idle);
        if (all == 0) continue;
        stats.perCore[i] = static_cast<double>(busy * 100) / static_cast<double>(all);
        stats.perCoreSystem[i] = static_cast<double>(step(system) * 100) / static_cast<double>(all);
        userSum += static_cast<double>(step(user) + step(nice));
        systemSum += static_cast<double>(step(system));
        idleSum += static_cast<double>(step(idle));
        allSum += static_cast<double>(all);
    }
    if (allSum > 0) {
        stats.user = userSum * 100 / allSum;
        stats.system = systemSum * 100 / allSum;
        stats.idle = idleSum * 100 / allSum;
        stats.total = stats.user + stats.system;
    }
    std::swap(previous_, current);
    return stats;
}

} // namespace sysinfo
