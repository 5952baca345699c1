#pragma once

#include "monitor/SensorGroups.h"
#include "monitor/Snapshot.h"

#include <limits>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace quarn {

/// One of the busiest processes of a tick.
struct HistoryProc {
    int64_t pid = 0;
    Text name;
    double cpu = 0; ///< percent of one core
    uint64_t mem = 0;
    bool accessible = false; ///< its details could be read

    bool operator==(const HistoryProc&) const = default;
};

/// The two directions of one device, bytes per second: read and written by a disk, received and sent by a
/// network interface.
struct DeviceRate {
    double down = 0;
    double up = 0;

    bool operator==(const DeviceRate&) const = default;
};

/// The devices of a tick by name, in the order of the snapshot.
using DeviceRates = SharedList<std::pair<Text, DeviceRate>>;

/// A span without samples, because the machine slept or the program did not run: begin and end in seconds
/// since the epoch, as the Monitor tells them.
using HistoryBreak = std::pair<double, double>;

/// What the history of the last half hour keeps of one tick. Numbers that were not known are NaN where they
/// are no optionals; byte counts that were not known are 0.
struct HistorySample {
    static constexpr double notKnown = std::numeric_limits<double>::quiet_NaN();

    HistorySample() = default;
    /// `top` are the busiest processes, `maxima` the hottest sensors by part of the machine. What did not
    /// change since `previous` (null for none) is shared with it.
    HistorySample(const Snapshot& snapshot, SharedList<HistoryProc> top,
                  std::span<const SensorGroups::Maximum> maxima, const HistorySample* previous);

    WallTime time{};
    int64_t generation = 0;      ///< of the snapshot
    double cpuTotal = notKnown;  ///< percent of all cores
    double cpuSystem = notKnown; ///< percent
    uint64_t memUsed = 0;        ///< bytes
    int64_t processCount = 0;
    SharedList<HistoryProc> top;
    double cpuUser = notKnown;
    uint64_t memSwap = 0;
    double diskRead = notKnown; ///< bytes per second, as the next three
    double diskWrite = notKnown;
    double netRx = notKnown;
    double netTx = notKnown;
    std::optional<double> sysWatts;
    std::optional<double> cpuWatts;
    std::optional<double> gpuUtil;  ///< percent
    std::optional<double> hotspotC; ///< the hottest sensor
    std::optional<int64_t> batteryPercent;
    int64_t threads = 0;
    std::vector<float> sensorGroupMax; ///< °C by SensorGroups' slot; NaN where it has no sensor
    std::optional<double> npuWatts;
    double gpuMemUsed = notKnown; ///< bytes
    double encoderWatts = notKnown;
    double decoderWatts = notKnown;
    double diskActive = notKnown; ///< share of the time, 0 to 1
    double pageIn = notKnown;     ///< pages per second, as the next
    double pageOut = notKnown;
    std::optional<double> batteryWatts; ///< negative while it discharges
    std::vector<double> perCore;        ///< busy percent of each
    std::vector<double> perCoreSystem;
    double gpuRenderer = notKnown; ///< percent, as the next
    double gpuTiler = notKnown;
    DeviceRates diskRates;
    DeviceRates interfaceRates;
    int64_t disksGeneration = 0;
    int64_t interfacesGeneration = 0;
    bool restored = false; ///< read back from the archive of an earlier run
};

/// Samples are never changed, so that every list of them shares them.
using SharedSample = std::shared_ptr<const HistorySample>;

/// The first entry of `top` with the highest CPU; null when it is empty.
const HistoryProc* busiest(const HistorySample& sample);

} // namespace quarn
