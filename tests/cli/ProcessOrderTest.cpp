#include "cli/ProcessColumns.h"

#include "monitor/Processes.h"
#include "support/Joined.h"

namespace quarn::cli {
namespace {

ProcInfo process(int64_t pid, std::string_view name, double cpu, uint64_t memory, double disk) {
    ProcInfo info = testing::processOf(pid, name, cpu);
    info.accessible = cpu >= 0;
    info.memBytes = memory;
    info.ioKnown = disk >= 0;
    info.diskWriteRate = disk;
    return info;
}

TEST(ProcessOrder, LargestFirstUnknownLastEqualByPid) {
    const SharedList<ProcInfo> list{process(1, "init", 0, 30, -1), process(2, "zsh", 5, 10, 0),
                                    process(3, "cc", 90, 20, 7), process(4, "ash", 5, 20, 9),
                                    process(5, "hidden", -1, 0, -1)};
    const auto pids = [&](ProcessOrder order, const Known& known = {}) {
        return testing::joinedEach(ordered(list, order, 99, known), &ProcInfo::pid);
    };
    EXPECT_EQ(pids(ProcessOrder::cpu), "3 2 4 1 5 ");
    EXPECT_EQ(pids(ProcessOrder::memory), "1 3 4 2 5 ");
    EXPECT_EQ(pids(ProcessOrder::disk), "4 3 2 1 5 ");
    EXPECT_EQ(pids(ProcessOrder::pid), "1 2 3 4 5 ");
    EXPECT_EQ(pids(ProcessOrder::name), "4 3 5 1 2 ");
    EXPECT_EQ(pids(ProcessOrder::cpu, {.processRates = false}), "1 2 3 4 5 ");
    EXPECT_EQ(ordered(list, ProcessOrder::cpu, 2, {}).size(), 2u);
}

TEST(ProcessColumns, FillTheWidthAndNeverOverlap) {
    for (int cells = 1; cells <= 300; ++cells) {
        const auto columns = columnsFor(cells);
        ASSERT_FALSE(columns.empty());
        for (size_t i = 1; i < columns.size(); ++i) {
            ASSERT_EQ(columns[i].begin, columns[i - 1].begin + columns[i - 1].width + 2) << cells;
        }
        const PlacedColumn& last = columns.back();
        if (cells >= 25) {
            EXPECT_EQ(last.begin + last.width, cells);
        }
    }
}

} // namespace
} // namespace quarn::cli
