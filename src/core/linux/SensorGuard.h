#pragma once

#include "core/SMCConnection.h"
#include "core/linux/SensorIo.h"

#include <string>

namespace sysinfo::platform {

/// Keeps a device from being disturbed by a reading:
///
/// A suspended device (a graphics card, a network card, a disk with runtime power management) would resume.
/// It is read only while power/runtime_status says that it is active.
///
/// A device that suspends by itself after some seconds without use would never do so when each reading
/// counts as a use. After half a minute of readings it is left alone for as long as it needs to fall asleep;
/// if it is still active then, somebody else uses it and the readings go on.
///
/// A rotating disk that spins down by its own timer shows no such status, and being asked for its
/// temperature restarts that timer. It is read only when it has transferred data since the last look, for
/// then its timer was restarted anyway; a disk that never does anything never shows a temperature. Other
/// disks leave their deeper power states for a moment when asked: one that is not at work is asked once a
/// minute.
class SensorGuard {
public:
    SensorGuard() = default;
    /// `device` is the resolved folder of the device; empty for a chip without one.
    explicit SensorGuard(const std::string& device);

    /// SensorState::answering when the device may be read now; else asleep or idle. Cheap; never touches
    /// the device.
    SensorState admission(const SensorIo& io);
    /// To be called when a reading is over: transfers that it caused itself do not count.
    void readingEnded(const SensorIo& io);

    /// For how long an answer may be shown when no newer one can be had.
    uint64_t keptNs() const;

private:
    bool isPausing(const SensorIo& io);
    bool isDiskAtRest(const SensorIo& io);

    KeptAttribute runtimeStatus_;
    KeptAttribute control_;   ///< "auto" while the device may suspend by itself
    uint64_t pauseNs_ = 0;    ///< how long it takes to do so; 0 when it does not
    bool inReadings_ = false; ///< between pauses
    uint64_t turnNs_ = 0;     ///< when the readings, or the pause, come to an end

    KeptAttribute transfers_; ///< of a disk
    bool isRotating_ = false;
    std::string lastTransfers_;
    uint64_t lastReadNs_ = 0;
};

} // namespace sysinfo::platform
