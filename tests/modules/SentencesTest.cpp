// The sentences at the head of the pages.
#include "monitor/Processes.h"
#include "monitor/ResourceAppList.h"
#include "ui/modules/PageSentences.h"
#include "ui/modules/StateSentence.h"

namespace quarn::testing {
namespace {

NetInterface link(const char* name, bool up, double rate) {
    NetInterface link;
    link.name = name, link.up = up, link.rxRate = rate;
    return link;
}

TEST(PageSentences, Network) {
    Snapshot s;
    EXPECT_EQ(networkSentence(s, {}, {}), "No network interface but the loopback was found");
    s.interfaces = {link("eth0", false, 0)};
    EXPECT_EQ(networkSentence(s, {.rates = false}, {}), "Rates follow with the next sample");
    EXPECT_EQ(networkSentence(s, {}, {}), "No interface is up");
    s.interfaces = {link("eth0", true, 0), link("wlan0", false, 0)};
    EXPECT_EQ(networkSentence(s, {}, {}), "Hardly any traffic; 1 of 2 interfaces are up");
    s.net.rxRate = 2e6;
    s.net.txRate = 1e6;
    s.interfaces = {link("eth0", true, 2.5e6), link("wlan0", true, 0.5e6)};
    EXPECT_EQ(networkSentence(s, {}, {}), "Receiving 2.00 MB/s and sending 1.00 MB/s, most of it on eth0");
    s.interfaces = {link("eth0", true, 1.5e6), link("wlan0", true, 1.5e6)};
    EXPECT_EQ(networkSentence(s, {}, {.networkInBits = true}), "Receiving 16.0 Mb/s and sending 8.00 Mb/s");
}

TEST(PageSentences, Disks) {
    Snapshot s;
    EXPECT_EQ(diskSentence(s, {}), "No physical disks were found");
    s.disk.diskCount = 1;
    EXPECT_EQ(diskSentence(s, {.rates = false}), "Rates follow with the next sample");
    EXPECT_EQ(diskSentence(s, {}), "Hardly anything is read or written");
    s.disk.readRate = 14e6;
    s.disk.activeFraction = 1.2; // a tick that was a little late
    EXPECT_EQ(diskSentence(s, {}), "Reading 14.0 MB/s and writing 0 B/s; disks are busy 100 % of the time");
}

TEST(PageSentences, Sensors) {
    Snapshot s;
    EXPECT_EQ(sensorSentence(s, {}), "No sensor has given a value");
    s.fanKeys = {{"F0Ac", 0}, {"F1Ac", 0}};
    EXPECT_EQ(sensorSentence(s, {}), "The fans stand still");
    s.temps = {{"TC0P", 54}, {"TN01", 61}};
    s.fanKeys = {{"F0Ac", 1200}, {"F1Ac", 1900}, {"F2Ac", 0}};
    EXPECT_EQ(sensorSentence(s, {}), "The hottest part: NVMe disks, at 61 °C; 2 fans turn at up to 1900 rpm");
    s.temps = {{"TA0P", 30}};
    s.fanKeys = {};
    EXPECT_EQ(sensorSentence(s, {.fahrenheit = true}), "The hottest part: surroundings, at 86 °F");
}

TEST(PageSentences, PowerAndWhyItIsNotKnown) {
    Snapshot s;
    EXPECT_EQ(powerSentence(s), "The power that the machine draws is not known");
    s.power.sysWatts = 12.4;
    Battery battery;
    battery.present = true;
    battery.percent = -1;
    battery.onAC = true;
    s.battery = battery;
    EXPECT_EQ(powerSentence(s), "The machine draws 12.4 W; the battery is on mains, not charging");
    s.battery->percent = 74;
    EXPECT_EQ(powerSentence(s), "The machine draws 12.4 W; the battery holds 74 %, on mains, not charging");

    using enum sysinfo::EnergyAccess;
    EXPECT_EQ(powerReason(denied, s), "energy counters are readable by root only");
    EXPECT_EQ(powerReason(none, s), "this machine has no energy counters that are known here");
    s.power.cpuWatts = 3;
    EXPECT_EQ(powerReason(none, s), "");
}

TEST(PageSentences, TheMachine) {
    Snapshot s;
    EXPECT_EQ(machineSentence({}, s, {.uptime = false}), "This machine");
    Hardware hardware;
    hardware.model = "Model X";
    hardware.ncpu = 8;
    hardware.memTotal = 16ull << 30;
    s.uptime = 3 * 3600;
    EXPECT_EQ(machineSentence(hardware, s, {}),
              "Model X: 8 cores and 16.0 GiB of memory, running for 3 h 0 min");
}

TEST(StateSentence, namesWhatUsesMost) {
    Snapshot snapshot;
    ProcInfo hidden = processOf(9, "locked", 200);
    hidden.accessible = false;
    snapshot.processes = {processOf(1, "web", 30), processOf(2, "compiler", 50), processOf(3, "web", 40),
                          hidden};
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

    snapshot.processes = {processOf(1, "web", 0.4), processOf(2, "web", 0.5)};
    EXPECT_EQ(stateSentence(snapshot, {}), "1.2 of 4 cores busy") << "nobody worth naming";
    snapshot.cpu.perCore = {30};
    EXPECT_EQ(stateSentence(snapshot, {}), "The core is 30 % busy");
    EXPECT_EQ(stateSentence(snapshot, {.cpu = false}), "");
}

} // namespace
} // namespace quarn::testing
