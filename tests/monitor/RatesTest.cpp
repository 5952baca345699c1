// Rates from counters.
#include "monitor/Rates.h"
#include "monitor/ProcessList.h"
#include "monitor/Processes.h"
#include "monitor/RateWindow.h"
#include "support/Joined.h"

#include <array>

namespace quarn::testing {
namespace {

using Rates = std::vector<double>;

Rates push(RateWindow& window, uint64_t a, uint64_t b, double at) {
    return window.push(std::array{a, b}, at);
}

TEST(RateWindow, AveragesOverTheWindow) {
    RateWindow window(3);
    EXPECT_EQ(push(window, 0, 0, 0), (Rates{0, 0}));
    EXPECT_EQ(push(window, 100, 10, 1), (Rates{100, 10}));
    EXPECT_EQ(push(window, 100, 10, 2), (Rates{50, 5}));
    // At 4 s the sample of 0 s is dropped, since that of 1 s already spans the window.
    EXPECT_EQ(push(window, 400, 40, 4), (Rates{100, 10}));
}

TEST(RateWindow, StartsAnewAfterAnythingThatCannotBeCompared) {
    RateWindow window(10);
    push(window, 100, 100, 1);
    push(window, 200, 200, 2);
    EXPECT_EQ(push(window, 199, 300, 3), (Rates{0, 0})) << "a counter fell";
    EXPECT_EQ(push(window, 299, 400, 4), (Rates{100, 100}));
    EXPECT_EQ(push(window, 300, 500, 3.5), (Rates{0, 0})) << "time went back";
    EXPECT_EQ(window.push(std::array<uint64_t, 1>{900}, 9), (Rates{0})) << "another number of counters";
    EXPECT_EQ(window.push(std::array<uint64_t, 1>{950}, 9), (Rates{0})) << "no time passed";
}

ProcInfo process(int64_t pid, uint64_t start, uint64_t read, uint64_t switches) {
    ProcInfo p = processOf(pid);
    p.startTimeMicros = start;
    p.diskRead = read;
    p.diskWrite = read * 2;
    p.contextSwitches = switches;
    p.ioKnown = true;
    return p;
}

TEST(ProcessRates, ComparesEachProcessWithItselfOnly) {
    std::vector<ProcessIO> previous;
    std::vector<ProcInfo> before{process(1, 10, 1000, 50), process(2, 10, 1000, 50), process(3, 10, 1000, 50),
                                 process(4, 10, 0, 0)};
    before[0].energyNj = 1'000'000'000;
    before[3].ioKnown = false;
    keepCounters(before, previous);

    std::vector<ProcInfo> after{process(1, 10, 5000, 70), process(2, 99, 9000, 90), process(3, 10, 400, 20),
                                process(4, 10, 8000, 40), process(5, 10, 9000, 90)};
    after[0].energyNj = 5'000'000'000;
    applyIORates(after, previous, 2);
    EXPECT_EQ(joinedEach(after, &ProcInfo::diskReadRate, &ProcInfo::diskWriteRate, &ProcInfo::cswRate),
              "2000|4000|10 0|0|0 0|0|0 0|0|20 0|0|0 ")
        << "the second's pid is another's, the third's counters fell, the disk figures of the fourth were "
           "unknown, the last is new";
    EXPECT_DOUBLE_EQ(after[0].watts.value(), 2);
    EXPECT_FALSE(after[1].watts.has_value());
}

TEST(SystemRates, PerSecondAndNeverNegative) {
    SystemCounters before, after;
    before.mem.pageIns = 100, after.mem.pageIns = 300;
    before.mem.swapOuts = 5, after.mem.swapOuts = 4;
    before.contextSwitches = 10, after.contextSwitches = 1010;
    after.mem.lookups = 40, after.mem.hits = 10;
    const auto rates = deriveRates(before, after, 4);
    EXPECT_EQ(joined(rates.pageIn, rates.swapOut, rates.contextSwitches, rates.cacheHitRatio),
              "50|0|250|0.25");
    EXPECT_EQ(deriveRates(before, after, 0).pageIn, 0);
    EXPECT_FALSE(deriveRates(before, before, 4).cacheHitRatio.has_value()) << "nothing was looked up";
}

TEST(DiskRates, MatchedByName) {
    const auto disk = [](const char* bsd, uint64_t bytes) {
        DiskDevice d;
        d.bsd = bsd;
        d.readBytes = bytes;
        d.writeBytes = bytes / 2;
        return d;
    };
    std::vector<DiskDevice> after{disk("sdb", 5000), disk("sda", 300), disk("sdc", 900)};
    applyDiskRates(after, {disk("sda", 100), disk("sdb", 9000)}, 2);
    EXPECT_EQ(joinedEach(after, &DiskDevice::readRate, &DiskDevice::writeRate), "0|0 100|50 0|0 ")
        << "the first is another disk of that name, the last is new";
}

TEST(ProcessList, OfTheHelperIsOrdered) {
    HelperProcessList list;
    list.processes.resize(2);
    list.processes[0].pid = 9;
    list.processes[1].pid = 3;
    list.processes[1].accessible = true;
    EXPECT_EQ(joinedEach(fromHelper(list), &ProcInfo::pid, &ProcInfo::ioKnown), "3|1 9|0 ");
}

TEST(DiskKind, InPlainWords) {
    const auto kind = [](const char* architecture, const char* interconnect, bool isInternal,
                         bool removable) {
        DiskDevice disk;
        disk.architecture = architecture;
        disk.interconnect = interconnect;
        disk.isInternal = isInternal;
        disk.removable = removable;
        return diskKind(disk);
    };
    EXPECT_EQ(kind("NVMe", "NVMe", true, false), "Internal disk");
    EXPECT_EQ(kind("USB Mass Storage", "USB", false, false), "External disk");
    EXPECT_EQ(kind("USB Mass Storage", "USB", false, true), "Flash drive");
    EXPECT_EQ(kind("SD card reader", "SD", true, true), "Memory card");
    EXPECT_EQ(kind("Disk image", "", true, false), "Disk image");
}

} // namespace
} // namespace quarn::testing
