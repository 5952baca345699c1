#include "cli/Engine.h"

#include "ui/settings/Prefs.h"

#include <thread>

namespace quarn::cli {

Engine::Engine(sysinfo::SystemRoot root)
    : root_(std::move(root)),
      queue_("com.kelmora.quarn.sampler", QualityOfService::userInitiated),
      aux_("com.kelmora.quarn.aux"),
      monitor_({.queue = queue_,
                .aux = aux_,
                .main = loop_,
                .prefs = Prefs::shared(),
                .helper = helper_,
                .root = root_}) {}

void Engine::wantSensors() {
    if (!sensors_) sensors_.emplace(monitor_, PowerSplit::wanted);
}

const Snapshot& Engine::sample() {
    monitor_.sampleNow();
    loop_.runPending(); // publishes it
    return monitor_.latest();
}

const Snapshot& Engine::sampleOver(double interval) {
    if (sensors_) monitor_.sampleAuxNow();
    if (interval <= 0) return sample();
    monitor_.setTick(interval);
    sample();
    std::this_thread::sleep_for(std::chrono::duration<double>(interval));
    if (sensors_) monitor_.sampleAuxNow();
    return sample();
}

} // namespace quarn::cli
