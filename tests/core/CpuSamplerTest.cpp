#include "core/CpuSampler.h"

namespace {

using sysinfo::CpuSampler;
using sysinfo::platform::CpuTicks;

CpuTicks ticks(std::vector<uint32_t> ids, std::vector<uint64_t> values) {
    return {std::move(ids), std::move(values)};
}

sysinfo::CpuStats between(CpuTicks before, CpuTicks after) {
    CpuSampler sampler;
    sampler.advance(before);
    return sampler.advance(after);
}

TEST(CpuSampler, FirstSamplePrimes) {
    CpuSampler sampler;
    auto first = ticks({0, 1}, {10, 10, 10, 10, 20, 20, 20, 20});
    const auto stats = sampler.advance(first);
    EXPECT_EQ(stats.total, 0);
    EXPECT_EQ(stats.idle, 100);
    EXPECT_EQ(stats.perCore, (std::vector<double>{0, 0}));
    EXPECT_EQ(stats.perCoreSystem, (std::vector<double>{0, 0}));
}

TEST(CpuSampler, SharesOfTheInterval) {
    // CPU 0: user 20, system 10, idle 60, nice 10. CPU 1 did not move at all.
    const auto stats = between(ticks({0, 1}, {100, 100, 100, 100, 5, 5, 5, 5}),
                               ticks({0, 1}, {120, 110, 160, 110, 5, 5, 5, 5}));
    EXPECT_DOUBLE_EQ(stats.user, 30);
    EXPECT_DOUBLE_EQ(stats.system, 10);
    EXPECT_DOUBLE_EQ(stats.idle, 60);
    EXPECT_DOUBLE_EQ(stats.total, 40);
    EXPECT_EQ(stats.perCore, (std::vector<double>{40, 0}));
    EXPECT_EQ(stats.perCoreSystem, (std::vector<double>{10, 0}));
}

TEST(CpuSampler, WrapAndFallOfACounter) {
    EXPECT_EQ(sysinfo::tickIncrement(0xffff'fff0, 0x10), 0x20u) << "a 32-bit counter that wrapped";
    EXPECT_EQ(sysinfo::tickIncrement(0xffff'fff0, 0x1'0000'0010), 0x20u) << "a 64-bit counter past 2^32";
    EXPECT_EQ(sysinfo::tickIncrement(5000, 4990), 0u) << "idle time that fell";
    // A falling idle counter must not turn the whole interval into idle time.
    EXPECT_DOUBLE_EQ(between(ticks({0}, {0, 0, 5000, 0}), ticks({0}, {10, 0, 4990, 0})).total, 100);
}

TEST(CpuSampler, AnotherSetOfCpusPrimesAgain) {
    const auto fewer = between(ticks({0, 1}, {1, 1, 1, 1, 1, 1, 1, 1}), ticks({0}, {900, 1, 1, 1}));
    EXPECT_EQ(fewer.idle, 100);
    EXPECT_EQ(fewer.perCore.size(), 1u);
    const auto swapped =
        between(ticks({0, 1}, {1, 1, 1, 1, 1, 1, 1, 1}), ticks({0, 2}, {9, 1, 1, 1, 900, 1, 1, 1}));
    EXPECT_EQ(swapped.idle, 100) << "CPU 1 went and CPU 2 came: their counters must not be compared";
}

} // namespace
