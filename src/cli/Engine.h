#pragma once

#include "HelperKit/RunLoop.h"
#include "HelperKit/SerialQueue.h"
#include "monitor/Monitor.h"
#include "ui/modules/Known.h"

namespace quarn::cli {

/// A Monitor with all that it needs, for one run of a command. The main executor is `loop`.
class Engine {
public:
    explicit Engine(sysinfo::SystemRoot root);

    const sysinfo::SystemRoot& root() const { return root_; }
    RunLoop& loop() { return loop_; }
    SerialQueue& queue() { return queue_; }
    Monitor& monitor() { return monitor_; }

    /// Keeps sensors and power read from now on.
    void wantSensors();
    /// One sample now, for people who look at it every `interval` seconds.
    const Snapshot& sample();
    /// Two samples, `interval` seconds apart, and the second one; with an interval of 0 the first, in which
    /// no rate is known. Sensors and power, where wanted, are read for each.
    const Snapshot& sampleOver(double interval);
    /// What of the last sample is known.
    Known known() const { return knownIn(monitor_.latest(), root_); }

private:
    sysinfo::SystemRoot root_;
    RunLoop loop_;
    SerialQueue queue_;
    SerialQueue aux_;
    NoHelper helper_;
    Monitor monitor_;
    std::optional<SensorRetention> sensors_;
};

} // namespace quarn::cli
