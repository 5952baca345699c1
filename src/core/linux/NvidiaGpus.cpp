#include "core/linux/NvidiaGpus.h"

#include "core/linux/Files.h"
#include "core/linux/GpuDevices.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr uint64_t sameMoment = 300'000'000; // ns
constexpr const char* libraryName = "libnvidia-ml.so.1";

NvidiaGate::State sleepState(const SystemRoot& root, const std::vector<GpuDevice>& gpus) {
    NvidiaGate::State state;
    for (const GpuDevice& gpu : gpus) {
        state.asleep = state.asleep || !isAwake(root, gpu);
        state.canSleep = state.canSleep || readAttribute(root.path(gpu.folder + "power/control")) == "auto";
    }
    return state;
}

} // namespace

std::shared_ptr<NvidiaGpus> NvidiaGpus::of(const SystemRoot& root) {
    if (!root.isHost()) return nullptr;
    static std::mutex mutex;
    static std::weak_ptr<NvidiaGpus> instance;
    const std::lock_guard lock(mutex);
    if (auto shared = instance.lock()) return shared;

    std::vector<GpuDevice> gpus = listGpus(root);
    std::erase_if(gpus, [](const GpuDevice& gpu) { return gpu.driver != "nvidia"; });
    if (gpus.empty()) return nullptr;
    auto shared = std::make_shared<NvidiaGpus>(
        Setup{[] { return Nvml::open(libraryName); },
              [root, gpus = std::move(gpus)] { return sleepState(root, gpus); }});
    instance = shared;
    return shared;
}

NvidiaGpus::NvidiaGpus(Setup setup)
    : setup_(std::move(setup)), thread_([this](const std::stop_token& stop) { work(stop); }) {}

NvidiaGpus::~NvidiaGpus() = default;

std::vector<NvidiaReading> NvidiaGpus::read(uint64_t nanoseconds) {
    std::unique_lock lock(mutex_);
    if (answeredFor_ > 0 && nanoseconds < answeredFor_ + sameMoment) return readings_;
    askedFor_ = nanoseconds;
    asked_.notify_one();
    answered_.wait_for(lock, setup_.patience, [&] { return answeredFor_ >= nanoseconds; });
    return readings_;
}

void NvidiaGpus::work(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        const bool wanted =
            asked_.wait_for(lock, stop, setup_.unusedClose, [&] { return askedFor_ != answeredFor_; });
        if (wanted) {
            const uint64_t moment = askedFor_;
            serve(static_cast<double>(moment) / 1e9, lock);
            answeredFor_ = moment;
            answered_.notify_all();
        } else if (nvml_ && !stop.stop_requested()) {
            lock.unlock();
            nvml_.reset();
            lock.lock();
        }
    }
}

/// Called with the lock held; lets go of it while it talks to the library.
void NvidiaGpus::serve(double now, std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    const auto state = setup_.state();
    const bool open = gate_.mayOpen(now, state);
    std::vector<NvidiaReading> readings;
    if (!open)
        nvml_.reset();
    else if (!nvml_)
        nvml_ = setup_.open();
    if (open && nvml_) {
        readings = nvml_->read();
        gate_.saw(now, std::any_of(readings.begin(), readings.end(),
                                   [](const NvidiaReading& gpu) { return gpu.busyPercent.value_or(0) > 0; }));
    }
    lock.lock();
    // While the session pauses so that idle GPUs may sleep, what they were last seen doing stands.
    if (open || state.asleep) readings_ = std::move(readings);
}

} // namespace sysinfo::platform
