#include "monitor/Rates.h"

#include "monitor/ProcessList.h"

namespace {

using namespace quarn;

ProcInfo process(int64_t pid, uint64_t start, uint64_t read, uint64_t switches) {
    ProcInfo p;
    p.pid = pid;
    p.startTimeMicros = start;
    p.diskRead = read;
    p.diskWrite = read * 2;
    p.contextSwitches = switches;
    p.accessible = p.ioKnown = true;
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
    const std::vector<double> expected[]{{2000, 4000, 10},
                                         {0, 0, 0} /* reused pid */,
                                         {0, 0, 0} /* fell */,
                                         {0, 0, 20} /* disk figures were unknown */,
                                         {0, 0, 0} /* new */};
    for (size_t i = 0; i < after.size(); ++i)
        EXPECT_EQ((std::vector{after[i].diskReadRate, after[i].diskWriteRate, after[i].cswRate}), expected[i])
            << i;
    EXPECT_DOUBLE_EQ(after[0].watts.value(), 2);
    EXPECT_FALSE(after[1].watts.has_value());
}

TEST(SystemRates, PerSecondAndNeverNegative) {
    SystemCounters before, after;
    before.mem.pageIns = 100;
    after.mem.pageIns = 300;
    before.mem.swapOuts = 5;
    after.mem.swapOuts = 4;
    before.contextSwitches = 10;
    after.contextSwitches = 1010;
    after.mem.lookups = 40;
    after.mem.hits = 10;
    const auto rates = deriveRates(before, after, 4);
    EXPECT_DOUBLE_EQ(rates.pageIn, 50);
    EXPECT_DOUBLE_EQ(rates.swapOut, 0);
    EXPECT_DOUBLE_EQ(rates.contextSwitches, 250);
    EXPECT_DOUBLE_EQ(rates.cacheHitRatio.value(), 0.25);
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
    EXPECT_EQ(after[0].readRate, 0) << "another disk took the name";
    EXPECT_EQ(after[1].readRate, 100);
    EXPECT_EQ(after[1].writeRate, 50);
    EXPECT_EQ(after[2].readRate, 0) << "new";
}

TEST(ProcessList, OfTheHelperIsOrdered) {
    HelperProcessList list;
    list.processes.resize(2);
    list.processes[0].pid = 9;
    list.processes[1].pid = 3;
    list.processes[1].accessible = true;
    const auto processes = fromHelper(list);
    EXPECT_EQ(processes[0].pid, 3);
    EXPECT_TRUE(processes[0].ioKnown);
    EXPECT_FALSE(processes[1].ioKnown);
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
