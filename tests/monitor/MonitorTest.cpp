// The engine over a small captured machine whose files the test changes, with time driven by hand.
#include "monitor/Monitor.h"

#include "support/Joined.h"
#include "support/ManualQueue.h"
#include "support/TempRoot.h"
#include "ui/settings/Prefs.h"
#include "ui/settings/SettingsStore.h"

#include <unistd.h>

namespace quarn::testing {
namespace {

using namespace std::chrono_literals;

class FakeHelper final : public HelperClient {
public:
    bool isEnabled() const override { return true; }
    bool isConnected() const override { return true; }
    HelperFetch pollProcesses(std::chrono::milliseconds, std::function<void()> onReply) override {
        ++polls;
        reply = std::move(onReply);
        return next;
    }
    std::optional<HelperPower> fetchPower(std::chrono::milliseconds) override { return {}; }

    HelperFetch next;
    std::function<void()> reply;
    int polls = 0;
};

struct MonitorTest : ::testing::Test {
    MonitorTest() {
        machine.write("proc/stat", "cpu0 0 0 0 0\nctxt 1000\nbtime 100\n")
            .write("proc/meminfo", "MemTotal: 1000 kB\nAnonPages: 300 kB\n")
            .write("proc/vmstat", "pgfault 100\n")
            .write("proc/loadavg", "0.50 0.25 0.10 1/9 7\n")
            .write("proc/uptime", "77.9 5\n");
        writeProcess(7, 0, 0);
        monitor = std::make_unique<Monitor>(
            MonitorSetup{.queue = queue,
                         .aux = auxQueue,
                         .main = mainQueue,
                         .prefs = prefs,
                         .helper = helper,
                         .root = machine.root(),
                         .steadySeconds = [this] { return 5000 + queue.seconds(); },
                         .asleepSeconds = [this] { return asleep; },
                         .wallTime =
                             [this] {
                                 return WallTime(42s + std::chrono::duration_cast<std::chrono::seconds>(
                                                           std::chrono::duration<double>(queue.seconds())));
                             }});
        monitor->observe([this](const Snapshot& snapshot) { seen.push_back(snapshot); });
    }

    void writeProcess(int pid, int cpuTicks, int readBytes) {
        const std::string folder = "proc/" + std::to_string(pid) + "/";
        machine.write(folder + "stat", std::to_string(pid) + " (p) S 1 0 0 0 0 0 0 0 0 0 " +
                                           std::to_string(cpuTicks) + " 0 0 0 0 0 2 0 50 0\n");
        machine.write(folder + "status", "Uid: 5 5 5 5\nRssAnon: 4 kB\nvoluntary_ctxt_switches: 3\n");
        machine.write(folder + "io", "read_bytes: " + std::to_string(readBytes) + "\nwrite_bytes: 0\n");
    }

    /// Lets `by` pass, publishes what came and answers the last of it.
    const Snapshot& pass(Queue::Duration by) {
        queue.advance(by);
        mainQueue.run();
        return seen.at(seen.size() - 1);
    }

    TempRoot machine, home;
    SettingsStore store{home.path() / "settings.toml"};
    Prefs prefs{store};
    ManualQueue queue, auxQueue, mainQueue;
    FakeHelper helper;
    double asleep = 100;
    std::vector<Snapshot> seen;
    std::unique_ptr<Monitor> monitor;
};

TEST_F(MonitorTest, TicksAtThePeriodOfTheProfile) {
    monitor->start();
    EXPECT_EQ(queue.lastInterval, 2s) << "the stored profile is normal";
    EXPECT_EQ(queue.lastLeeway, 20ms);
    EXPECT_EQ(pass(0s).generation, 1) << "the first tick comes at once";
    const Snapshot third = pass(4s);
    EXPECT_EQ(seen.size(), 3u);
    EXPECT_EQ(joined(third.generation, third.processGeneration, third.uptime, monitor->latest().generation),
              "3|3|77|3");
    EXPECT_EQ(third.timestamp, WallTime(46s));
    EXPECT_EQ(third.loadAvg, (std::vector<double>{0.5, 0.25, 0.1}));

    monitor->setProfile(SamplingProfile::diagnostic);
    monitor->start();
    EXPECT_EQ(queue.lastInterval, 1s);
    EXPECT_EQ(queue.timerCount(), 1u) << "the old timer is replaced";
}

TEST_F(MonitorTest, RatesOfTheIntervalBetweenTicks) {
    const auto traffic = [&](const char* bytes) {
        machine.write("proc/net/dev",
                      std::string("a|b\n c|d\n eth0: ") + bytes + " 10 0 0 0 0 0 0 5 1 0 0 0 0 0 0\n");
    };
    traffic("1000");
    monitor->start();
    pass(0s);
    machine.write("proc/stat", "cpu0 50 0 25 25\nctxt 3000\nbtime 100\n")
        .write("proc/vmstat", "pgfault 500\n");
    writeProcess(7, 10, 8192);
    traffic("5000");
    const auto& snapshot = pass(2s);
    EXPECT_EQ(joined(snapshot.cpu.total, snapshot.rates.contextSwitches, snapshot.rates.faults,
                     snapshot.totalThreads, snapshot.mem.app, snapshot.interfacesGeneration),
              "75|1000|200|2|307200|2");
    EXPECT_EQ(joinedEach(snapshot.processes, &ProcInfo::diskReadRate), "4096 ");
    EXPECT_EQ(joinedEach(snapshot.interfaces, &NetInterface::rxRate), "2000 ");
}

TEST_F(MonitorTest, InTheBackgroundProcessesAreCarried) {
    monitor->setBackground(true);
    monitor->start();
    EXPECT_EQ(queue.lastLeeway, 200ms);
    EXPECT_EQ(queue.qos, QualityOfService::utility);
    pass(0s);
    writeProcess(8, 0, 0);
    const Snapshot third = pass(4s);
    EXPECT_EQ(third.generation, 3);
    EXPECT_EQ(third.processGeneration, 1);
    EXPECT_EQ(third.processes.size(), 1u);
    EXPECT_EQ(third.processes.data(), seen.front().processes.data()) << "carried, not copied";
    EXPECT_EQ(third.disksGeneration, 1);
    EXPECT_EQ(pass(2s).processGeneration, 2) << "due after six seconds";
    EXPECT_EQ(seen.back().processes.size(), 2u);

    monitor->setPanelOpen(true);
    EXPECT_EQ(queue.lastLeeway, 20ms) << "a panel makes it a foreground plan";
    EXPECT_EQ(pass(0s).disksGeneration, 2);

    monitor->setPanelOpen(false);
    prefs.backgroundInterval.set(7);
    monitor->start();
    EXPECT_EQ(queue.lastInterval, 7s);
}

TEST_F(MonitorTest, AMachineThatStopsAnsweringKeepsTicking) {
    monitor->start();
    pass(0s);
    for (const char* file : {"stat", "meminfo", "vmstat", "loadavg", "uptime"})
        machine.write(std::string("proc/") + file, "");
    machine.remove("proc/7");
    const auto& snapshot = pass(2s);
    EXPECT_EQ(joined(snapshot.generation, snapshot.cpu.idle, snapshot.mem.total), "2|100|0");
    EXPECT_TRUE(snapshot.cpu.perCore.empty() && snapshot.loadAvg.empty() && snapshot.processes.empty());
}

TEST_F(MonitorTest, SensorsAreReadOnlyWhileSomebodyWantsThem) {
    machine.files("sys/class/hwmon/hwmon0",
                  "name=coretemp;temp1_input=47000;temp1_label=Package id 0;fan1_input=1200");
    monitor->setProfile(SamplingProfile::diagnostic);
    monitor->start();
    const auto tick = [&] {
        pass(1s);
        auxQueue.run(); // the job, then what it brought lands with the next run of the queue
        return seen.back();
    };
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(tick().temps.empty());
    {
        const SensorRetention retention(*monitor);
        tick();
        const auto snapshot = tick();
        EXPECT_EQ(joinedEach(snapshot.temps, &Sensor::value), "47 ");
        EXPECT_EQ(joinedEach(snapshot.fanKeys, &Sensor::value), "1200 ");
        EXPECT_EQ(monitor->sensorGroupMaxima().size(), 1u);
    }
    // The total power alone is asked for without a client.
    EXPECT_DOUBLE_EQ(tick().temps[0].value, 47) << "the last reading stays";
}

TEST_F(MonitorTest, OneAuxiliaryJobAtATimeAndNoTickWaitsForIt) {
    monitor->start();
    pass(20s); // the job of the first tick never comes to its turn
    EXPECT_EQ(seen.size(), 11u);
    EXPECT_EQ(auxQueue.pendingCount(), 1u);
}

TEST_F(MonitorTest, TheBatteryIsReadEveryTenSeconds) {
    machine.files("sys/class/power_supply/BAT0", "type=Battery;present=1;status=Discharging;capacity=80");
    monitor->start();
    EXPECT_EQ(pass(0s).battery.value().percent, 80);
    machine.write("sys/class/power_supply/BAT0/capacity", "79\n");
    EXPECT_EQ(pass(8s).battery.value().percent, 80);
    EXPECT_EQ(pass(2s).battery.value().percent, 79);
    machine.remove("sys/class/power_supply");
    EXPECT_FALSE(pass(10s).battery.has_value());
}

TEST_F(MonitorTest, ASleepLeavesABreakInTheHistory) {
    monitor->start();
    pass(4s);
    EXPECT_TRUE(monitor->historyBreaks().empty());
    asleep += 3600;
    pass(4s);
    EXPECT_EQ(monitor->historyBreaks(), (std::vector<std::pair<double, double>>{{46, 48}}));
}

TEST_F(MonitorTest, ACapturedMachineIsNeverReadThroughTheHelper) {
    monitor->setHelperActive(true);
    monitor->sampleNow();
    EXPECT_EQ(helper.polls, 0);
}

TEST_F(MonitorTest, NothingIsPublishedAfterItsEnd) {
    monitor->sampleNow();
    monitor.reset();
    mainQueue.run();
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(queue.timerCount(), 0u);
}

/// Reads the machine at hand as an ordinary user would.
TEST(MonitorHelper, OutcomesOfAPoll) {
    if (::geteuid() == 0 && ::seteuid(65534) != 0) GTEST_SKIP() << "cannot give up root";
    {
        TempRoot home;
        SettingsStore store(home.path() / "settings.toml");
        Prefs prefs(store);
        ManualQueue queue, mainQueue;
        FakeHelper helper;
        Monitor monitor({.queue = queue, .aux = queue, .main = mainQueue, .prefs = prefs, .helper = helper});
        std::vector<Snapshot> seen;
        monitor.observe([&](const Snapshot& snapshot) { seen.push_back(snapshot); });
        const auto tick = [&] {
            monitor.sampleNow();
            mainQueue.run();
            return seen.back();
        };
        monitor.setHelperActive(true);
        helper.next.outcome = HelperFetch::pending;
        EXPECT_EQ(tick().processGeneration, 0) << "nothing is taken while the answer is outstanding";
        ASSERT_TRUE(helper.reply);

        helper.next.outcome = HelperFetch::fresh;
        helper.next.list.processes.resize(1);
        helper.next.list.totalThreads = 9;
        helper.reply(); // the first answer is shown at once
        queue.run();
        mainQueue.run();
        EXPECT_EQ(
            joined(seen.back().processGeneration, seen.back().processes.size(), seen.back().totalThreads),
            "1|1|9");

        helper.next.outcome = HelperFetch::unavailable;
        EXPECT_EQ(tick().processes.size(), 1u) << "not due yet";
        monitor.setHelperActive(false);
    }
    ASSERT_EQ(::seteuid(::getuid()), 0);
}

} // namespace
} // namespace quarn::testing
