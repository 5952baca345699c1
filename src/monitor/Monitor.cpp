#include "monitor/Monitor.h"

#include "HelperKit/SerialQueue.h"
#include "core/MemStats.h"
#include "core/SCSampler.h"
#include "core/Storage.h"
#include "monitor/ProcessList.h"
#include "ui/settings/Prefs.h"

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

DiskDevice fromRecord(const SCDiskDevice& record) {
    DiskDevice disk;
    disk.bsd = record.bsd;
    disk.name = record.name;
    disk.interconnect = record.interconnect;
    disk.medium = record.medium;
    disk.architecture = record.architecture;
    disk.link = record.link;
    disk.size = record.size;
    disk.isInternal = record.internalDisk != 0;
    disk.removable = record.removable != 0;
    disk.readBytes = record.readBytes;
    disk.writeBytes = record.writeBytes;
    return disk;
}

} // namespace

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Monitor::Publication {
    Monitor& monitor;
};

Monitor::Monitor(MonitorSetup setup)
    : setup_(std::move(setup)),
      profile_(profileFromText(setup_.prefs.samplingProfile.get()).value_or(SamplingProfile::normal)),
      publication_(std::make_shared<Publication>(Publication{*this})),
      plan_(SamplingPlan::foreground(profile_)),
      sampler_(std::make_unique<SCSampler>(setup_.root)),
      diskList_(std::make_unique<sysinfo::DiskDeviceList>(setup_.root)) {}

Monitor::~Monitor() {
    timer_.reset();
    publication_.reset();
    setup_.queue.sync([] {}); // a tick under way ends first
}

Monitor& Monitor::shared(Executor& main) {
    static SerialQueue queue("com.kelmora.quarn.sampler", QualityOfService::userInitiated);
    static NoHelper helper;
    static Monitor monitor({.queue = queue, .main = main, .prefs = Prefs::shared(), .helper = helper});
    return monitor;
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
    timer_.reset();
    timer_ = setup_.queue.every(duration(plan.tick), duration(leeway), [this] { sample(); });
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
    snapshot.timestamp = setup_.wallTime();
    increment(tick_);

    auto& readers = *sampler_->readers;
    snapshot.cpu = sampler_->cpu.sample(readers);
    snapshot.mem = sysinfo::readMemStats(readers);
    snapshot.disk = sampler_->disk.sample(readers);
    sampleNetwork(snapshot, plan, now);
    sampleProcesses(snapshot, plan, now);
    double load[3];
    const int loads = platform::loadAverage(readers, load);
    if (loads > 0) snapshot.loadAvg.assign(load, load + loads);
    snapshot.uptime = platform::uptime(readers).value_or(0);
    sampleRates(snapshot, now);
    if (plan.deviceLists || !disks_.isTaken()) sampleDisks(now);
    snapshot.disks = disks_.cached;
    snapshot.disksGeneration = disksGeneration_;

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
        onReply = [queue = &setup_.queue, weak = std::weak_ptr(publication_)] {
            queue->async([weak] {
                if (const auto publication = weak.lock()) publication->monitor.sample();
            });
        };
    }
    return setup_.helper.pollProcesses(std::chrono::milliseconds(1500), std::move(onReply));
}

void Monitor::takeProcesses(const HelperFetch& fetch, double now) {
    std::vector<ProcInfo> processes;
    if (fetch.outcome == HelperFetch::fresh) {
        processes = fromHelper(fetch.list);
        lastThreads_ = fetch.list.totalThreads;
    } else {
        processes = fromSampler(sampler_->processes.sample(*sampler_->readers));
        lastThreads_ = sampler_->processes.totalThreads();
    }
    applyIORates(processes, prevProcIO_, lastProcesses_.isTaken() ? lastProcesses_.age(now) : 0);
    keepCounters(processes, prevProcIO_);
    increment(procGeneration_);
    lastProcesses_.store(std::move(processes), now);
}

void Monitor::sampleRates(Snapshot& snapshot, double now) {
    const SystemCounters counters{snapshot.mem, platform::contextSwitches(*sampler_->readers).value_or(0)};
    if (prevCounters_.isTaken() && prevCounters_.age(now) > 0)
        lastRates_ = deriveRates(prevCounters_.cached, counters, prevCounters_.age(now));
    snapshot.rates = lastRates_;
    prevCounters_.store(counters, now);
}

void Monitor::sampleDisks(double now) {
    std::vector<DiskDevice> disks;
    for (const auto& record : diskList_->sample(*sampler_->readers)) disks.push_back(fromRecord(record));
    applyDiskRates(disks, disks_.cached, disks_.isTaken() ? disks_.age(now) : 0);
    disks_.store(std::move(disks), now);
    increment(disksGeneration_);
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
