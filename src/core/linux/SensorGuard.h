#pragma once

#include "core/SMCConnection.h"
#include "core/linux/SensorIo.h"

#include <string>

namespace sysinfo::platform {

/// Keeps a device from being disturbed by a reading. Two kinds of device need it:
///
/// A suspended device (a graphics card, a network card, a disk with runtime power management) resumes when
/// its sensor is read. It is read only while power/runtime_status says that it is active.
///
/// A rotating disk that spins down by its own timer shows no such status, and being asked for its
/// temperature restarts that timer: asked every few seconds it would never rest. It is read only when it has
/// transferred data since the last look, for then its timer was restarted anyway. A disk that never does
/// anything therefore never shows a temperature.
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

    /// Whether the device is a rotating disk, whose answers are worth keeping longer.
    bool isRotatingDisk() const { return !transfers_.path.empty(); }

private:
    KeptAttribute runtimeStatus_;
    KeptAttribute transfers_;
    std::string lastTransfers_;
};

} // namespace sysinfo::platform
