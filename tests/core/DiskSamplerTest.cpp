#include "core/DiskSampler.h"
#include "support/TempRoot.h"

namespace {

using namespace sysinfo;
using platform::DriveCounters;
using quarn::testing::TempRoot;

constexpr uint64_t second = 1'000'000'000;
constexpr uint64_t ms = 1'000'000;

DriveCounters drive(uint64_t bytesRead, uint64_t bytesWritten, uint64_t opsRead, uint64_t timeReadNs) {
    return {"sda", {bytesRead, bytesWritten, opsRead, 0, timeReadNs, 0, true}};
}

TEST(DiskSampler, RatesBusyShareAndResponse) {
    DiskSampler sampler((SystemRoot("/nonexistent")));
    const SCDisk first = sampler.advance({drive(1000, 500, 10, 0), drive(0, 0, 0, 0)}, second);
    EXPECT_EQ(first.readBytes, 1000u);
    EXPECT_EQ(first.readRate, 0);
    EXPECT_EQ(first.activeFraction, 0);

    // 400 ms of service in two seconds of two drives, by 20 operations.
    const SCDisk busy =
        sampler.advance({drive(5000, 500, 20, 100 * ms), drive(0, 0, 10, 300 * ms)}, 3 * second);
    EXPECT_DOUBLE_EQ(busy.readRate, 2000);
    EXPECT_EQ(busy.writeRate, 0);
    EXPECT_DOUBLE_EQ(busy.readOpsRate, 10);
    EXPECT_DOUBLE_EQ(busy.activeFraction, 0.1);
    EXPECT_DOUBLE_EQ(busy.avgResponseMs, 20);

    // Requests served at once add up to more time than passed.
    const SCDisk flooded =
        sampler.advance({drive(5000, 500, 20, 90 * second), drive(0, 0, 10, 0)}, 4 * second);
    EXPECT_EQ(flooded.activeFraction, 1);
    EXPECT_EQ(flooded.avgResponseMs, 0) << "no operation ended";
}

TEST(DiskSampler, ADriveThatWasUnpluggedOrDoesNotAnswer) {
    DiskSampler sampler((SystemRoot("/nonexistent")));
    sampler.advance({drive(9000, 0, 90, 9 * ms), drive(5, 0, 1, ms)}, second);
    const SCDisk fewer = sampler.advance({drive(5, 0, 1, ms)}, 2 * second);
    EXPECT_EQ(fewer.readRate, 0) << "a fall is no traffic";
    EXPECT_EQ(fewer.activeFraction, 0);

    DriveCounters silent = drive(77, 0, 7, 7);
    silent.stats.ok = false;
    const SCDisk half = sampler.advance({drive(5, 0, 1, 501 * ms), silent}, 3 * second);
    EXPECT_EQ(half.readBytes, 5u);
    EXPECT_DOUBLE_EQ(half.activeFraction, 0.25) << "the silent drive still is a drive";
}

TEST(DiskSampler, AFailedReadingIsZeroAndTheNextNoBurst) {
    TempRoot machine;
    machine.write("proc/diskstats", "8 0 sda 1 0 1000 0 0 0 0 0 0 0 0\n").write("sys/block/sda/size", "2048");
    const auto readers = platform::openReaders(machine.root());
    DiskSampler sampler(machine.root());
    EXPECT_EQ(sampler.sample(*readers).readBytes, 512'000u);
    const SCDisk failed = sampler.sample(*platform::openReaders(SystemRoot("/nonexistent")));
    EXPECT_EQ(failed.readBytes, 0u);
    const SCDisk next = sampler.sample(*readers);
    EXPECT_EQ(next.readBytes, 512'000u);
    EXPECT_EQ(next.readRate, 0);
    EXPECT_EQ(next.capacityBytes, 1024u * 1024);
    EXPECT_EQ(next.diskCount, 1u);
}

} // namespace
