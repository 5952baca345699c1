#pragma once

#include "core/SMCConnection.h"
#include "core/linux/SensorClass.h"
#include "core/linux/SensorGuard.h"
#include "core/linux/SensorIo.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sysinfo::platform {

/// One sensor of a chip, as found when the chip was looked at.
struct SensorChannel {
    SensorKind kind = SensorKind::temperature;
    int number = 0;
    std::string label;
    uint32_t type = smcFloat; ///< SMC type and size of its answers
    uint32_t size = 4;
    uint32_t namedKey = 0; ///< the key that the hardware itself gives it; 0 when one is to be assigned
    enum class Role : uint8_t { own, systemPower, inputPower };
    Role role = Role::own;       ///< the last two stand behind "PSTR" and "PDTR" and have no key of their own
    bool isListedAtOnce = false; ///< its key is enumerated without waiting for a first answer
};

/// The data of one channel as SMC bytes.
struct SensorAnswer {
    bool ok = false;
    uint64_t takenNs = 0; ///< when it was asked, also without success; 0 never
    std::array<uint8_t, 32> bytes{};
};

struct SensorLimits {
    std::optional<double> max;
    std::optional<double> crit;
};

/// What a chip is: the same after a reboot, whatever order the drivers loaded in.
struct ChipIdentity {
    std::string text; ///< unique within the machine
    std::string name; ///< of the chip by its driver; empty when it has none
    std::string display;
    std::string device; ///< last part of its device's path, to tell chips of one name apart
    SensorClass sensorClass = SensorClass::board;
};

/// A source of sensors that is read as a whole. `refresh` runs on one thread at a time, which may be a
/// different one each time and may take as long as the hardware does; everything else may be called from
/// any thread meanwhile and never waits for it.
class SensorChip {
public:
    SensorChip(ChipIdentity identity, std::vector<SensorChannel> channels, SensorGuard guard);
    virtual ~SensorChip() = default;
    SensorChip(const SensorChip&) = delete;
    SensorChip& operator=(const SensorChip&) = delete;

    const ChipIdentity identity;
    const std::vector<SensorChannel> channels;

    /// Asks the sensors `wanted` (positions in `channels`; a chip may answer for others too), unless the
    /// device sleeps. A sensor that failed is left alone for 1, 2, 4 … 64 seconds.
    void refresh(const SensorIo& io, std::span<const size_t> wanted);

    /// Whether a value asked for now would differ from the one at hand: it is older than a quarter of a
    /// second, and its back-off is over.
    bool isDue(size_t channel, uint64_t nowNs) const;

    /// The last answer while it is young enough to be shown: 15 seconds, five minutes for a disk.
    std::optional<SensorAnswer> answer(size_t channel, uint64_t nowNs) const;

    SensorState state(size_t channel, uint64_t nowNs) const;
    SensorLimits limits(size_t channel) const;
    bool hasAnswered(size_t channel) const; ///< at any time

    /// How long a refresh of so many channels may take before the chip counts as slow.
    virtual uint64_t deadlineNs(const SensorIo& io, size_t wanted) const;

    /// Called when the device is gone: nothing more is read or answered.
    void retire() { retired_ = true; }

protected:
    /// Reads the channels and reports each with `report`. Runs without a lock.
    virtual void read(const SensorIo& io, std::span<const size_t> wanted) = 0;
    /// What the chip itself says of a channel's bounds; asked once, when it first answered.
    virtual SensorLimits readLimits(const SensorIo& io, size_t channel);

    bool mayTry(size_t channel, uint64_t nowNs) const;
    void reportValue(const SensorIo& io, size_t channel, std::optional<double> value);
    void reportBytes(const SensorIo& io, size_t channel, std::span<const uint8_t> bytes);
    void reportFailure(const SensorIo& io, size_t channel);
    /// Nothing to tell now, without fault of the sensor: it is asked again next time.
    void reportNothing(const SensorIo& io, size_t channel);

private:
    struct Standing {
        SensorAnswer answer;
        uint64_t retryNs = 0; ///< not to be asked before
        int failures = 0;     ///< in a row
        bool everAnswered = false;
        SensorLimits limits;
    };
    void report(size_t channel, const SensorAnswer& answer, uint64_t pauseNs);

    mutable std::mutex mutex_;
    std::vector<Standing> standing_; ///< guarded by mutex_
    SensorState admission_ = SensorState::waiting;
    uint64_t refusedNs_ = 0; ///< when the guard last kept it asleep
    SensorGuard guard_;      ///< used by refresh only
    const uint64_t keptNs_;  ///< how long an answer may be shown
    std::atomic<bool> retired_ = false;
};

} // namespace sysinfo::platform
