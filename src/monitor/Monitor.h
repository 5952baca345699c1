#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "core/SMCConnection.h"
#include "core/SystemRoot.h"
#include "monitor/AuxSchedule.h"
#include "monitor/HelperClient.h"
#include "monitor/RateWindow.h"
#include "monitor/Rates.h"
#include "monitor/SamplingPlan.h"
#include "monitor/SensorGroups.h"
#include "monitor/SensorRetention.h"
#include "monitor/Snapshot.h"
#include "monitor/Throttled.h"

#include <functional>
#include <memory>
#include <vector>

struct SCSampler;

namespace sysinfo {
class GpuSampler;
class SystemEvents;
} // namespace sysinfo

namespace quarn {

class DeviceLists;
class Prefs;

/// What a Monitor works with. What it refers to must outlive it.
struct MonitorSetup {
    Queue& queue;   ///< where every tick runs, "com.kelmora.quarn.sampler"
    Queue& aux;     ///< where slow readings run, "com.kelmora.quarn.aux"
    Executor& main; ///< where snapshots are published
    Prefs& prefs;
    HelperClient& helper;
    sysinfo::SystemRoot root = sysinfo::SystemRoot::host();
    /// Seconds on a scale that only goes forward, and the wall clock; tests drive them.
    std::function<double()> steadySeconds = quarn::steadySeconds;
    /// Seconds that the machine has slept since it booted.
    std::function<double()> asleepSeconds = quarn::asleepSeconds;
    std::function<WallTime()> wallTime = [] { return std::chrono::system_clock::now(); };
};

/// The engine: samples the machine on a timer and publishes each Snapshot on the main executor.
///
/// A tick never stops for a failed reading: what failed is empty or zero in that snapshot. Readings that need
/// not change each tick (battery, and in the background processes and device lists) carry their last value.
/// Slow readings (sensors, power) run on the auxiliary queue, at most one job at a time, and come with the
/// tick after they landed.
///
/// All members are called on the main executor's thread unless they say otherwise.
class Monitor {
public:
    using Observer = std::function<void(const Snapshot&)>;

    /// The profile is the stored one. Nothing is sampled before `start` or `sampleNow`.
    explicit Monitor(MonitorSetup setup);
    /// Stops the timer and waits for a tick under way; snapshots not yet published are dropped.
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// The program's one instance on this machine, publishing on the `main` of the first call.
    static Monitor& shared(Executor& main);

    /// Where the machine is read. Any thread.
    const sysinfo::SystemRoot& root() const { return setup_.root; }

    /// The machine itself, as it was when this was made.
    const Hardware& hardware() const { return hardware_; }

    /// Starts ticking at once with the plan of the current profile; replaces a running timer.
    void start();
    /// Runs one tick on the queue and waits for it. The snapshot is published like any other.
    void sampleNow();
    /// Takes every slow reading that somebody wants, due or not, and waits for it; the next tick carries it.
    /// For commands that show the machine once.
    void sampleAuxNow();

    /// The plan in effect. Any thread.
    SamplingPlan plan() const { return plan_.get(); }
    SamplingProfile profile() const { return profile_; }
    /// Takes effect with the next `start`.
    void setProfile(SamplingProfile profile) { profile_ = profile; }
    /// Replaces the tick of the plan, at once for `sampleNow` and with the next `start` for the timer; for
    /// commands that are given an interval. Not positive: the profile's own again.
    void setTick(double seconds);
    /// Whether the application shows no window, and whether a panel is open; a change restarts a running
    /// timer.
    void setBackground(bool background);
    void setPanelOpen(bool open);

    /// The snapshot published last.
    const Snapshot& latest() const { return latest_; }
    /// Called for each snapshot on the main executor, in the order of adding.
    void observe(Observer observer) { observers_.push_back(std::move(observer)); }

    /// Counts a client in or out that wants sensors, and the power split by domain. Any thread; use
    /// SensorRetention.
    void retainSensors(PowerSplit powerSplit);
    void releaseSensors(PowerSplit powerSplit);

    /// The spans in which the machine slept, seconds since the epoch, the latest 1,000. Any thread.
    std::vector<std::pair<double, double>> historyBreaks() const { return historyBreaks_.get(); }
    /// The hottest sensor of each part of the machine at the last reading. Any thread.
    std::vector<SensorGroups::Maximum> sensorGroupMaxima() const { return lastSensorGroupMax_.get(); }

    /// What was known of the machine's sensors besides their values at the last reading, also of those that
    /// have none. Any thread.
    SharedList<sysinfo::SensorDescription> sensors() const { return sensors_.get(); }

    /// Whether processes and power may be taken from the privileged helper. Any thread.
    bool helperActive() const { return helperState_.get(); }
    void setHelperActive(bool active) { helperState_.set(active); }

    /// The mounted volumes now; never waits for a remote server. Any thread.
    std::vector<Volume> volumes() const;

private:
    struct Auxiliary;   ///< what the auxiliary queue reads with
    struct Publication; ///< what closures on the main executor hold weakly

    static void sampleSoon(Queue& queue, std::weak_ptr<Publication> publication);
    SamplingPlan buildPlan() const;
    void restartIfRunning();

    // All below runs on the queue.
    void sample();
    void sampleNetwork(Snapshot& snapshot, const SamplingPlan& plan, double now);
    void sampleProcesses(Snapshot& snapshot, const SamplingPlan& plan, double now);
    HelperFetch fetchFromHelper();
    void takeProcesses(const HelperFetch& fetch, double now);
    void sampleRates(Snapshot& snapshot, double now);
    void sampleBattery(Snapshot& snapshot, const SamplingPlan& plan, double now);
    void noteSleep(const Snapshot& snapshot);
    void addAuxReadings(Snapshot& snapshot, double now) const;
    AuxDemand auxDemand() const;
    void scheduleAux(const AuxReads& reads);
    void landAux(const AuxReads& reads, AuxResult result);
    void publish(Snapshot snapshot);

    MonitorSetup setup_;
    Hardware hardware_;
    SamplingProfile profile_;
    double tickOverride_ = 0;
    bool background_ = false;
    bool panelOpen_ = false;
    Snapshot latest_;
    std::vector<Observer> observers_;
    std::unique_ptr<RepeatingTimer> timer_;
    std::shared_ptr<Publication> publication_;

    Locked<SamplingPlan> plan_;
    Locked<bool> helperState_{false};
    Locked<int> sensorUsers_{0};
    Locked<int> splitUsers_{0};
    Locked<bool> powerSourceChanged_{false};
    Locked<std::vector<std::pair<double, double>>> historyBreaks_;
    Locked<std::vector<SensorGroups::Maximum>> lastSensorGroupMax_;
    Locked<SharedList<sysinfo::SensorDescription>> sensors_;

    std::unique_ptr<SCSampler> sampler_;
    std::unique_ptr<DeviceLists> devices_;
    std::unique_ptr<sysinfo::GpuSampler> gpu_;
    RateWindow netWindow_{0};
    Throttled<SystemCounters> prevCounters_;
    SystemRates lastRates_;
    int64_t disksGeneration_ = 0;
    int64_t ifacesGeneration_ = 0;
    Throttled<std::optional<Battery>> battery_;
    AuxSchedule aux_;
    SharedList<Sensor> lastTemps_;
    SharedList<Sensor> lastPower_;
    SharedList<Sensor> lastVolt_;
    SharedList<Sensor> lastCurr_;
    SharedList<Sensor> lastFan_;
    std::set<std::string> verifiedSMCRails_;
    double lastAsleep_ = 0;
    WallTime lastTickAt_{};
    Throttled<SharedList<ProcInfo>> lastProcesses_;
    ListPool<ProcInfo> processLists_;
    int64_t lastThreads_ = 0;
    std::vector<ProcessIO> prevProcIO_; ///< ascending by pid
    int64_t procGeneration_ = 0;
    int64_t generation_ = 0;
    int64_t tick_ = 0;

    std::unique_ptr<Auxiliary> auxiliary_;          ///< belongs to the auxiliary queue
    std::unique_ptr<sysinfo::SystemEvents> events_; ///< last: its thread touches the members above
};

} // namespace quarn
