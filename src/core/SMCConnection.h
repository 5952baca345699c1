#pragma once

#include "core/SMCProtocol.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sysinfo {

/// Why a sensor has a value, or none.
enum class SensorState : uint8_t {
    waiting,   ///< it has not been asked yet, or its first answer is still to come
    answering, ///< it has a value
    asleep,    ///< its device is suspended and is not woken for a reading
    idle,      ///< its device is left alone for now, since asking could keep it from going to rest
    failing,   ///< it was asked and gave no value
    gone,      ///< its device was removed
};

/// What a sensor source knows of one of its sensors besides the value. Texts are free of control characters.
struct SensorDescription {
    uint32_t key = 0;
    std::string label;         ///< of the sensor as its driver names it; empty when it has no name
    std::string chip;          ///< what it is part of, such as "coretemp" or "NVMe Samsung SSD 970"
    int number = 0;            ///< of the sensor among those of its kind in its chip
    std::optional<double> max; ///< the value that should not be exceeded, in the sensor's unit
    std::optional<double> crit;
    SensorState state = SensorState::waiting;
};

/// What stands behind SMC::command: a controller, or something that presents its sensors as one does. Any
/// thread may call; a call never waits for a sensor that is slow.
class SMCConnection {
public:
    virtual ~SMCConnection() = default;

    /// Performs `in.command` and fills `out`, which is zeroed. False when the call itself failed; a key that
    /// is unknown or does not answer shows in `out.result`.
    virtual bool call(const SMCParameters& in, SMCParameters& out) = 0;

    /// Announces that these keys are about to be read, so that a source can read them together.
    virtual void prepare(std::span<const uint32_t> keys) { static_cast<void>(keys); }

    /// Everything known of a key besides its value.
    virtual std::optional<SensorDescription> describe(uint32_t key) {
        static_cast<void>(key);
        return {};
    }

    /// Every sensor of the machine, also those that have no value; empty when the source knows only keys.
    virtual std::vector<SensorDescription> sensors() { return {}; }

    /// Waits until slow sensors that are being read have answered, at most `patience`.
    virtual void settle(std::chrono::milliseconds patience) { static_cast<void>(patience); }
};

} // namespace sysinfo
