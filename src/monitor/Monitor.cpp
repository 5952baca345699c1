#include "monitor/Monitor.h"

#include "HelperKit/SerialQueue.h"
#include "core/Battery.h"
#include "core/GpuStats.h"
#include "core/HardwareInfo.h"
#include "core/IOReport.h"
#include "core/MemStats.h"
#include "core/NeuralEngine.h"
#include "core/SCSampler.h"
#include "core/SMC.h"
#include "core/SMCSensors.h"
#include "core/SystemEvents.h"
#include "monitor/DeviceLists.h"
#include "monitor/HardwareConversion.h"
#include "monitor/ProcessList.h"
#include "ui/settings/Prefs.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace quarn {

namespace platform = sysinfo::platform;

namespace {

/// Counts one up; a counter that could overflow stops the program rather than wraps.
void increment(int64_t& counter) {
    if (__builtin_add_overflow(counter, 1, &counter)) std::abort();
}

Queue::Duration duration(double seconds) {
    return std::chrono::duration_cast<Queue::Duration>(std::chrono::duration<double>(seconds));
}

Hardware describeMachine(const sysinfo::SystemRoot& root) {
    return toHardware(sysinfo::readHardwareInfo(root), sysinfo::readBattery(root),
                      platform::findNeuralEngine(root));
}

} // namespace

double asleepSeconds() { return platform::asleepSeconds(); }

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Monitor::Publication {
    Monitor& monitor;
};

struct Monitor::Auxiliary {
    explicit Auxiliary(const sysinfo::SystemRoot& root)
        : smc(root), sensors(smc), energy(platform::openEnergySource(root), platform::monotonicRawNs, [this] {
              return sensors.value("PSTR");
          }) {}

    sysinfo::SMC smc;
    sysinfo::SMCSensors sensors;
    sysinfo::IOReport energy;
};

Monitor::Monitor(MonitorSetup setup)
    : setup_(std::move(setup)),
      hardware_(describeMachine(setup_.root)),
      profile_(profileFromText(setup_.prefs.samplingProfile.get()).value_or(SamplingProfile::normal)),
      publication_(std::make_shared<Publication>(Publication{*this})),
      plan_(SamplingPlan::foreground(profile_)),
      sampler_(std::make_unique<SCSampler>(setup_.root)),
      devices_(std::make_unique<DeviceLists>(setup_.root)),
      gpu_(std::make_unique<sysinfo::GpuSampler>(setup_.root)),
      lastAsleep_(setup_.asleepSeconds()) {}

Monitor::~Monitor() {
    events_.reset();
    timer_.reset();
    setup_.queue.sync([this] { publication_.reset(); }); // a tick under way ends first,
    setup_.aux.sync([] {});                              // then the job that it may have started,
    setup_.queue.sync([] {});                            // then the landing of what the job brought
}

Monitor& Monitor::shared(Executor& main) {
    static SerialQueue queue("com.kelmora.quarn.sampler", QualityOfService::userInitiated);
    static SerialQueue aux("com.kelmora.quarn.aux");
    static NoHelper helper;
    static Monitor monitor(
        {.queue = queue, .aux = aux, .main = main, .prefs = Prefs::shared(), .helper = helper});
    return monitor;
}

void Monitor::sampleSoon(Queue& queue, std::weak_ptr<Publication> weak) {
    queue.async([weak = std::move(weak)] {
        if (const auto publication = weak.lock()) publication->monitor.sample();
    });
}

SamplingPlan Monitor::buildPlan() const {
    const bool visible = !background_ || panelOpen_;
    SamplingPlan plan = visible ? SamplingPlan::foreground(profile_)
                                : SamplingPlan::background(profile_, setup_.prefs.backgroundInterval.get());
    if (tickOverride_ > 0) plan.tick = plan.processInterval = plan.networkWindow = tickOverride_;
    return plan;
}

void Monitor::start() {
    const SamplingPlan plan = buildPlan();
    plan_.set(plan);
    setup_.queue.setQualityOfService(plan.qos);
    const double leeway = background_ && !panelOpen_ ? 0.2 : 0.02;
    if (!events_ && setup_.root.isHost()) {
        events_ = std::make_unique<sysinfo::SystemEvents>(sysinfo::SystemEvents::Handlers{
            .powerSourceChanged = [this] { powerSourceChanged_.set(true); },
            .wokeUp = [queue = &setup_.queue,
                       weak = std::weak_ptr(publication_)] { sampleSoon(*queue, weak); }});
    }
    timer_.reset();
    timer_ = setup_.queue.every(duration(plan.tick), duration(leeway), [this] { sample(); });
}

void Monitor::retainSensors(PowerSplit powerSplit) {
    sensorUsers_.withValue([](int& users) { ++users; });
    if (powerSplit == PowerSplit::wanted) splitUsers_.withValue([](int& users) { ++users; });
}

void Monitor::releaseSensors(PowerSplit powerSplit) {
    sensorUsers_.withValue([](int& users) { --users; });
    if (powerSplit == PowerSplit::wanted) splitUsers_.withValue([](int& users) { --users; });
}

SensorRetention::SensorRetention(Monitor& target, PowerSplit powerSplit)
    : target_(target), powerSplit_(powerSplit) {
    target_.retainSensors(powerSplit_);
}

void SensorRetention::release() {
    if (std::exchange(isActive_, false)) target_.releaseSensors(powerSplit_);
}

void Monitor::sampleAuxNow() {
    setup_.aux.sync([] {}); // a job under way comes first
    setup_.queue.sync([this] {
        const AuxDemand demand = auxDemand();
        AuxReads reads;
        reads.power.system = true;
        reads.power.split = demand.splitUsers > 0;
        reads.power.helper = demand.splitUsers > 0 && demand.helperActive;
        reads.temperatures = demand.temperaturesWanted;
        reads.smcKeys = demand.sensorUsers > 0;
        if (!aux_.busy) scheduleAux(reads);
    });
    setup_.aux.sync([] {});
    setup_.queue.sync([] {});
}

void Monitor::sampleNow() {
    setup_.queue.sync([this] { sample(); });
}

void Monitor::setTick(double seconds) {
    tickOverride_ = seconds;
    plan_.set(buildPlan());
}

void Monitor::restartIfRunning() {
    if (timer_) start();
}

void Monitor::setBackground(bool background) {
    if (std::exchange(background_, background) != background) restartIfRunning();
}

void Monitor::setPanelOpen(bool open) {
    if (std::exchange(panelOpen_, open) != open) restartIfRunning();
}

std::vector<Volume> Monitor::volumes() const {
    std::vector<Volume> volumes;
    for (auto& info : sysinfo::readVolumes(setup_.root))
        volumes.push_back({std::move(info.mount), std::move(info.device), std::move(info.fs), info.total,
                           info.freeBytes, info.used, info.local});
    return volumes;
}

void Monitor::sample() {
    const SamplingPlan plan = plan_.get();
    const double now = setup_.steadySeconds();
    Snapshot snapshot;
    snapshot.gpu = {.device = -1, .renderer = -1, .tiler = -1, .memUsed = 0, .memAlloc = 0}; // not read yet
    snapshot.timestamp = setup_.wallTime();
    snapshot.isAppleSilicon = hardware_.isAppleSilicon;
    increment(tick_);

    auto& readers = *sampler_->readers;
    snapshot.cpu = sampler_->cpu.sample(readers);
    snapshot.mem = sysinfo::readMemStats(readers);
    snapshot.disk = sampler_->disk.sample(readers);
    sampleNetwork(snapshot, plan, now);
    snapshot.gpu = sysinfo::combineGpus(gpu_->sample());
    sampleBattery(snapshot, plan, now);
    sampleProcesses(snapshot, plan, now);
    double load[3];
    const int loads = platform::loadAverage(readers, load);
    if (loads > 0) snapshot.loadAvg.assign(load, load + loads);
    snapshot.uptime = platform::uptime(readers).value_or(0);
    addAuxReadings(snapshot, now);
    if (const AuxReads reads = aux_.due(now, plan, auxDemand()); reads.any()) scheduleAux(reads);
    sampleRates(snapshot, now);
    if (plan.deviceLists || !devices_->isTaken()) {
        devices_->sample(*sampler_->readers, now);
        increment(disksGeneration_);
        increment(ifacesGeneration_);
    }
    snapshot.disks = devices_->disks();
    snapshot.disksGeneration = disksGeneration_;
    snapshot.interfaces = devices_->interfaces();
    snapshot.interfacesGeneration = ifacesGeneration_;
    noteSleep(snapshot);

    increment(generation_);
    snapshot.generation = generation_;
    publish(std::move(snapshot));
}

void Monitor::sampleNetwork(Snapshot& snapshot, const SamplingPlan& plan, double now) {
    SCNet& net = snapshot.net;
    net = sampler_->net.sample(*sampler_->readers);
    if (netWindow_.window() != plan.networkWindow) netWindow_ = RateWindow(plan.networkWindow);
    const std::array counters{net.rxBytes, net.txBytes, net.rxPackets, net.txPackets};
    const auto rates = netWindow_.push(counters, now);
    net.rxRate = rates[0];
    net.txRate = rates[1];
    net.rxPacketRate = rates[2];
    net.txPacketRate = rates[3];
}

void Monitor::sampleProcesses(Snapshot& snapshot, const SamplingPlan& plan, double now) {
    if (lastProcesses_.cached.empty() || plan.isDue(Resource::processes, lastProcesses_.age(now))) {
        const HelperFetch fetch = fetchFromHelper();
        if (fetch.outcome != HelperFetch::pending) takeProcesses(fetch, now);
    }
    snapshot.processes = lastProcesses_.cached;
    snapshot.totalThreads = lastThreads_;
    snapshot.processGeneration = procGeneration_;
}

HelperFetch Monitor::fetchFromHelper() {
    if (!helperActive() || platform::isRoot() || !setup_.root.isHost()) return {};
    std::function<void()> onReply;
    if (procGeneration_ == 0) {
        // The very first list is shown as soon as it comes, not a tick later.
        onReply = [queue = &setup_.queue, weak = std::weak_ptr(publication_)] { sampleSoon(*queue, weak); };
    }
    return setup_.helper.pollProcesses(std::chrono::milliseconds(1500), std::move(onReply));
}

void Monitor::takeProcesses(const HelperFetch& fetch, double now) {
    std::vector<ProcInfo> processes;
    if (fetch.outcome == HelperFetch::fresh) {
        processes = fromHelper(fetch.list);
        lastThreads_ = fetch.list.totalThreads;
    } else {
        processes = processLists_.take();
        fromSampler(sampler_->processes.sample(*sampler_->readers), processes);
        lastThreads_ = sampler_->processes.totalThreads();
    }
    applyIORates(processes, prevProcIO_, lastProcesses_.isTaken() ? lastProcesses_.age(now) : 0);
    keepCounters(processes, prevProcIO_);
    increment(procGeneration_);
    lastProcesses_.store(processLists_.share(std::move(processes)), now);
}

void Monitor::sampleRates(Snapshot& snapshot, double now) {
    const SystemCounters counters{snapshot.mem, platform::contextSwitches(*sampler_->readers).value_or(0)};
    if (prevCounters_.isTaken() && prevCounters_.age(now) > 0)
        lastRates_ = deriveRates(prevCounters_.cached, counters, prevCounters_.age(now));
    snapshot.rates = lastRates_;
    prevCounters_.store(counters, now);
}

void Monitor::sampleBattery(Snapshot& snapshot, const SamplingPlan& plan, double now) {
    const bool changed = powerSourceChanged_.withValue([](bool& flag) { return std::exchange(flag, false); });
    if (changed) battery_.makeStale();
    if (plan.isDue(Resource::battery, battery_.age(now)))
        battery_.store(toBattery(sysinfo::readBattery(setup_.root)), now);
    snapshot.battery = battery_.cached;
}

void Monitor::noteSleep(const Snapshot& snapshot) {
    constexpr double shortest = 1;
    constexpr size_t most = 1000;
    const double asleep = setup_.asleepSeconds();
    if (asleep - lastAsleep_ >= shortest && lastTickAt_ != WallTime{}) {
        const auto seconds = [](WallTime time) {
            return std::chrono::duration<double>(time.time_since_epoch()).count();
        };
        historyBreaks_.withValue([&](auto& breaks) {
            if (breaks.size() == most) breaks.erase(breaks.begin());
            breaks.emplace_back(seconds(lastTickAt_), seconds(snapshot.timestamp));
        });
    }
    lastAsleep_ = asleep;
    lastTickAt_ = snapshot.timestamp;
}

void Monitor::addAuxReadings(Snapshot& snapshot, double now) const {
    const PowerView power = aux_.power.readings.snapshot(now, helperActive());
    snapshot.power = power.power;
    snapshot.powerStale = power.powerStale;
    snapshot.powerSource = power.powerSource;
    snapshot.freq = power.freq;
    snapshot.dcInWatts = aux_.power.dcWatts;
    snapshot.temps = lastTemps_;
    snapshot.powerKeys = lastPower_;
    snapshot.voltageKeys = lastVolt_;
    snapshot.currentKeys = lastCurr_;
    snapshot.fanKeys = lastFan_;
}

AuxDemand Monitor::auxDemand() const {
    const auto shows = [](const std::vector<std::string>& modules) {
        return std::find(modules.begin(), modules.end(), "temperature") != modules.end();
    };
    AuxDemand demand;
    demand.sensorUsers = sensorUsers_.get();
    demand.splitUsers = splitUsers_.get();
    demand.helperActive = helperActive();
    demand.temperaturesWanted =
        demand.sensorUsers > 0 || shows(setup_.prefs.menuBarModules()) || shows(setup_.prefs.widgets.get());
    demand.noTemperatureYet = aux_.temperaturesAt < 0;
    return demand;
}

void Monitor::scheduleAux(const AuxReads& reads) {
    aux_.busy = true;
    setup_.aux.async([this, reads, verified = verifiedSMCRails_]() mutable {
        if (!auxiliary_) auxiliary_ = std::make_unique<Auxiliary>(setup_.root);
        auto result =
            readAux(reads, auxiliary_->sensors, auxiliary_->energy, setup_.helper, std::move(verified));
        if (reads.temperatures || reads.smcKeys) sensors_.set(auxiliary_->smc.sensors());
        setup_.queue.async(
            [this, reads, result = std::move(result)]() mutable { landAux(reads, std::move(result)); });
    });
}

void Monitor::landAux(const AuxReads& reads, AuxResult result) {
    const double now = setup_.steadySeconds();
    aux_.busy = false;
    aux_.power.land(result.power, reads.power, now);
    if (result.temperatures) {
        aux_.temperaturesAt = now;
        const auto naming = hardware_.isAppleSilicon ? SensorNaming::appleSilicon : SensorNaming::intel;
        lastSensorGroupMax_.set(SensorGroups::maxima(*result.temperatures, naming));
        lastTemps_ = std::move(*result.temperatures);
    }
    if (result.electrical) {
        aux_.smcKeysAt = now;
        lastPower_ = std::move(result.electrical->power);
        lastVolt_ = std::move(result.electrical->voltage);
        lastCurr_ = std::move(result.electrical->current);
        verifiedSMCRails_ = std::move(result.electrical->verified);
    }
    if (result.fans) lastFan_ = std::move(*result.fans);
}

void Monitor::publish(Snapshot snapshot) {
    setup_.main.async([weak = std::weak_ptr(publication_), snapshot = std::move(snapshot)]() mutable {
        const auto publication = weak.lock();
        if (!publication) return;
        Monitor& monitor = publication->monitor;
        monitor.latest_ = std::move(snapshot);
        for (const auto& observer : monitor.observers_) observer(monitor.latest_);
    });
}

} // namespace quarn
