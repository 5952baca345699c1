#include "ui/modules/StateSentence.h"

#include "monitor/ResourceAppList.h"

#include <gtest/gtest.h>

namespace quarn {
namespace {

ProcInfo process(int64_t pid, const char* name, double cpu) {
    ProcInfo info;
    info.pid = pid;
    info.name = name;
    info.cpuPercent = cpu;
    info.accessible = true;
    return info;
}

TEST(StateSentence, namesWhatUsesMost) {
    Snapshot snapshot;
    ProcInfo hidden = process(9, "locked", 200);
    hidden.accessible = false;
    snapshot.processes = {process(1, "web", 30), process(2, "compiler", 50), process(3, "web", 40), hidden};
    snapshot.cpu.perCore = {50, 25, 0, 45};
    snapshot.cpu.total = 30;
    EXPECT_EQ(stateSentence(snapshot, {}), "1.2 of 4 cores busy; web uses most")
        << "all of one name together";
    Known noRates;
    noRates.processRates = false;
    EXPECT_EQ(stateSentence(snapshot, noRates), "1.2 of 4 cores busy");

    ResourceAppList apps;
    apps.apps.resize(2);
    apps.apps[1].name = "Firefox";
    apps.apps[1].usage.cpuPercent = 70;
    EXPECT_EQ(stateSentence(snapshot, {}, &apps), "1.2 of 4 cores busy; Firefox uses most");

    snapshot.processes = {process(1, "web", 0.4), process(2, "web", 0.5)};
    EXPECT_EQ(stateSentence(snapshot, {}), "1.2 of 4 cores busy") << "nobody worth naming";
    snapshot.cpu.perCore = {30};
    EXPECT_EQ(stateSentence(snapshot, {}), "The core is 30 % busy");
    EXPECT_EQ(stateSentence(snapshot, {.cpu = false}), "");
}

} // namespace
} // namespace quarn
