#include "ui/modules/KindDetails.h"

#include "monitor/Processes.h"

#include <cmath>
#include <limits>

namespace quarn {
namespace {

ProcInfo process(int64_t pid, const char* name, double cpu, uint64_t memory, double disk) {
    ProcInfo result = testing::processOf(pid, name, cpu);
    result.memBytes = memory;
    result.diskWriteRate = disk;
    result.ioKnown = pid != 3; // somebody else's
    return result;
}

using Lines = std::vector<DetailLine>;

TEST(KindDetails, TheBusiestComeFirstAndTheIdleNotAtAll) {
    Snapshot snapshot;
    snapshot.processes = std::vector{process(1, "init", 0, 1 << 20, 0), process(2, "b", 30, 3 << 20, 5000),
                                     process(3, "hidden", 30, 0, 9000), process(4, "d", 120, 2 << 20, 0)};
    Reading reading{snapshot};
    struct Case {
        WidgetKind kind;
        size_t count;
        Lines lines;
    };
    const std::vector<Case> cases{
        {WidgetKind::cpu, 5, {{"d", "120 %"}, {"b", "30.0 %"}, {"hidden", "30.0 %"}}},
        {WidgetKind::cpu, 1, {{"d", "120 %"}}},
        {WidgetKind::memory, 2, {{"b", "3.00 MiB"}, {"d", "2.00 MiB"}}},
        {WidgetKind::disk, 5, {{"b", "5.00 kB/s"}}}, // what could not be read is no leader
        {WidgetKind::network, 5, {}},
        {WidgetKind::power, 5, {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(busiestProcesses(reading, c.kind, c.count), c.lines) << widgetKindId(c.kind);
    reading.known.processRates = false;
    EXPECT_EQ(busiestProcesses(reading, WidgetKind::cpu, 5), Lines{});
    EXPECT_EQ(busiestProcesses(reading, WidgetKind::memory, 1).size(), 1U);
}

TEST(KindDetails, TellsPartsInterfacesAndSensorsThatAreKnown) {
    Snapshot snapshot;
    snapshot.cpu.total = 30;
    snapshot.cpu.system = 10;
    snapshot.gpu = {.device = -1, .renderer = -1, .tiler = -1, .memUsed = 0, .memAlloc = 0};
    snapshot.temps = std::vector<Sensor>{{"TC0P", 50}, {"TN0P", 70}, {"TC1P", 61}};
    NetInterface idle, busy, down, loop;
    idle.name = "eth0", idle.up = true;
    busy.name = "wlan0", busy.up = true, busy.rxRate = 1000, busy.txRate = 500;
    down.name = "eth1", down.rxRate = 9999;
    loop.name = "lo", loop.up = loop.loopback = true, loop.rxRate = 9999;
    snapshot.interfaces = std::vector{idle, busy, down, loop};
    snapshot.power.cpuWatts = 4.5;
    Reading reading{snapshot};
    reading.style.fahrenheit = true;
    EXPECT_EQ(detailLines(reading, WidgetKind::cpu, 2),
              (Lines{{"Programs", "20.0 %"}, {"System", "10.0 %"}}));
    EXPECT_EQ(detailLines(reading, WidgetKind::temperature, 9),
              (Lines{{"CPU", "142 °F"}, {"NVMe disks", "158 °F"}}));
    EXPECT_EQ(detailLines(reading, WidgetKind::network, 9),
              (Lines{{"wlan0", "1.50 kB/s"}, {"eth0", "0 B/s"}}));
    EXPECT_EQ(detailLines(reading, WidgetKind::power, 9), (Lines{{"Processors", "4.50 W"}}));
    EXPECT_EQ(detailLines(reading, WidgetKind::gpu, 9), Lines{});
    reading.known = {.rates = false, .cpu = false, .memory = false, .memoryParts = false, .uptime = false};
    for (const WidgetKind kind : {WidgetKind::cpu, WidgetKind::memory, WidgetKind::network, WidgetKind::disk})
        EXPECT_EQ(detailLines(reading, kind, 9), Lines{}) << widgetKindId(kind);
}

} // namespace
} // namespace quarn
