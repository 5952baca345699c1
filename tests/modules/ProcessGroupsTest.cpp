#include "ui/modules/ProcessGroups.h"

#include "ui/modules/StateSentence.h"

#include <gtest/gtest.h>

namespace quarn {
namespace {

ProcInfo process(int64_t pid, const char* name, double cpu, uint64_t bytes) {
    ProcInfo info;
    info.pid = pid;
    info.name = name;
    info.cpuPercent = cpu;
    info.memBytes = bytes;
    info.accessible = true;
    return info;
}

Snapshot machine() {
    Snapshot snapshot;
    ProcInfo hidden = process(9, "locked", 0, 0);
    hidden.accessible = false;
    snapshot.processes = {process(1, "web", 30, 100), process(2, "compiler", 50, 200),
                          process(3, "web", 40, 50), process(4, "idle", 0, 900), hidden};
    snapshot.cpu.perCore = {50, 25, 0, 45};
    snapshot.cpu.total = 30;
    return snapshot;
}

std::string names(const std::vector<ProcessGroup>& groups) {
    std::string names;
    for (const auto& group : groups) names.append(group.name.view()).append(" ");
    return names;
}

TEST(ProcessGroups, addUpTheProcessesOfOneName) {
    const auto groups = topGroups(machine().processes, {}, GroupOrder::cpu, 3);
    EXPECT_EQ(names(groups), "web compiler idle "); // together web uses more than the single busiest
    EXPECT_EQ(groups[0].processes, 2U);
    EXPECT_DOUBLE_EQ(*groups[0].cpuPercent, 70);
    EXPECT_EQ(groups[0].memBytes, 150U);
}

TEST(ProcessGroups, rankTheUnknownLastAndNeverAsZero) {
    const auto all = topGroups(machine().processes, {}, GroupOrder::memory, 10);
    EXPECT_EQ(names(all), "idle compiler web locked ");
    EXPECT_FALSE(all.back().cpuPercent || all.back().memBytes);

    Known noRates;
    noRates.processRates = false;
    const auto first = topGroups(machine().processes, noRates, GroupOrder::cpu, 1);
    EXPECT_EQ(names(first), "idle "); // by memory while shares of time are not known
    EXPECT_FALSE(first[0].cpuPercent);
}

TEST(StateSentence, namesWhatUsesMost) {
    Snapshot snapshot = machine();
    EXPECT_EQ(stateSentence(snapshot, {}), "1.2 of 4 cores busy; web uses most");
    snapshot.processes = {process(1, "web", 0.4, 1), process(2, "web", 0.5, 1)};
    EXPECT_EQ(stateSentence(snapshot, {}), "1.2 of 4 cores busy"); // nobody worth naming
    snapshot.cpu.perCore = {30};
    EXPECT_EQ(stateSentence(snapshot, {}), "The core is 30 % busy");
    EXPECT_EQ(stateSentence(snapshot, {.cpu = false}), "");
}

} // namespace
} // namespace quarn
