#include "cli/Engine.h"

#include "ui/settings/Prefs.h"

#include <thread>

namespace quarn::cli {

Engine::Engine(sysinfo::SystemRoot root)
    : root_(std::move(root)),
      queue_("com.kelmora.quarn.sampler", QualityOfService::userInitiated),
      monitor_({.queue = queue_, .main = loop_, .prefs = Prefs::shared(), .helper = helper_, .root = root_}) {
}

const Snapshot& Engine::sample() {
    monitor_.sampleNow();
    loop_.runPending(); // publishes it
    return monitor_.latest();
}

const Snapshot& Engine::sampleOver(double interval) {
    if (interval <= 0) return sample();
    monitor_.setTick(interval);
    sample();
    std::this_thread::sleep_for(std::chrono::duration<double>(interval));
    return sample();
}

} // namespace quarn::cli
