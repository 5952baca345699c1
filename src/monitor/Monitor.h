#pragma once

#include "HelperKit/Locked.h"
#include "HelperKit/Queue.h"
#include "core/SystemRoot.h"
#include "core/sc.h"
#include "monitor/HelperClient.h"
#include "monitor/RateWindow.h"
#include "monitor/SamplingPlan.h"
#include "monitor/Snapshot.h"
#include "monitor/Throttled.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

struct SCSampler;

namespace sysinfo {
class DiskDeviceList;
struct ProcessInfo;
} // namespace sysinfo

namespace quarn {

class Prefs;

/// What a Monitor works with. The queues, the executor and the settings must outlive it.
struct MonitorSetup {
    sysinfo::SystemRoot root = sysinfo::SystemRoot::host();
    Queue& queue;   ///< where every tick runs, "com.kelmora.quarn.sampler"
    Executor& main; ///< where snapshots are published
    Prefs& prefs;
    HelperClient& helper;
    /// Seconds on a steady scale, and the wall clock; replaced in tests.
    std::function<double()> steadySeconds;
    std::function<WallTime()> wallTime;
};

/// The engine: samples the machine on a timer and publishes each Snapshot on the main executor.
///
/// A tick never stops for a failed reading: what failed is empty or zero in that snapshot. Readings that need
/// not change each tick (battery, and in the background processes and device lists) carry their last value.
class Monitor {
public:
    using Observer = std::function<void(const Snapshot&)>;

    explicit Monitor(const MonitorSetup& setup);
    /// Stops the timer and waits for a tick under way. Called on the main executor's thread.
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// The program's one instance on this machine, with queues of its own; `main` is that of the first call.
    static Monitor& shared(Executor& main);

    const Hardware& hardware() const { return hardware_; }

    /// Starts ticking at once with the plan of the current profile; replaces a running timer.
    void start();
    /// Runs one tick on the queue and waits for it. The snapshot is published like any other.
    void sampleNow();

    /// Takes effect with the next `start`.
    void setProfile(SamplingProfile profile);
    SamplingProfile profile() const { return profile_; }
    /// Whether the application shows no window, and whether a panel is open; a change restarts a running
    /// timer.
    void setBackground(bool background);
    void setPanelOpen(bool open);

    /// The snapshot published last. Main executor only.
    const Snapshot& latest() const { return latest_; }
    /// Called on the main executor for each snapshot, in the order of adding. Main executor only.
    void observe(Observer observer) { observers_.push_back(std::move(observer)); }

    /// Whether processes and power may be taken from the privileged helper. Any thread.
    bool helperActive() const { return helperState_.get(); }
    void setHelperActive(bool active) { helperState_.set(active); }

    /// The mounted volumes now; never waits for a remote server. Any thread.
    std::vector<Volume> volumes() const;

private:
    struct ProcessIO { ///< the counters of one process instance in the list before
        int64_t pid = 0;
        uint64_t start = 0;
        uint64_t read = 0;
        uint64_t write = 0;
        uint64_t contextSwitches = 0;
        std::optional<uint64_t> energy;
        bool ioKnown = false;
    };
    struct ContextSwitchSum {
        uint64_t sum = 0;
        double at = 0;
        bool fromHelper = false;
    };
    struct Publication; ///< what main-executor closures hold weakly

    void restartIfRunning();
    SamplingPlan buildPlan() const;

    void sample();
    void sampleNetwork(Snapshot& snapshot, const SamplingPlan& plan);
    void sampleProcesses(Snapshot& snapshot, const SamplingPlan& plan, double now);
    void takeProcesses(const HelperFetch& fetch, double now);
    void applyIORates(std::vector<ProcInfo>& processes, double dt);
    void updateContextSwitches(const std::vector<ProcInfo>& processes, double now, bool fromHelper);
    void computeRates(const SCMem& mem, double now);
    void sampleDisks(double now);
    void publish(Snapshot snapshot);

    MonitorSetup setup_;
    Hardware hardware_;
    Snapshot latest_;
    std::vector<Observer> observers_;
    std::vector<ProcessIO> prevProcIO_; ///< ascending by pid
    Throttled<SharedList<DiskDevice>> disks_;
    int64_t disksGeneration_ = 0;
    std::optional<SCMem> prevMem_;
    double prevMemAt_ = 0;
    ContextSwitchSum contextSwitches_;
    SystemRates lastRates_;
    RateWindow netWindow_;
    Locked<SamplingPlan> plan_;
    std::unique_ptr<SCSampler> sampler_;
    std::unique_ptr<sysinfo::DiskDeviceList> diskList_;
    int64_t generation_ = 0;
    int64_t procGeneration_ = 0;
    SharedList<ProcInfo> lastProcesses_;
    int64_t lastThreads_ = 0;
    int64_t tick_ = 0;
    double lastProcAt_ = 0;
    Locked<bool> helperState_{false};
    SamplingProfile profile_;
    bool background_ = false;
    bool panelOpen_ = false;
    std::unique_ptr<RepeatingTimer> timer_;
    std::shared_ptr<Publication> publication_;
};

} // namespace quarn
