#pragma once

#include "core/SMCConnection.h"
#include "core/linux/SensorChip.h"
#include "core/linux/SensorKeys.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sysinfo::platform {

/// Which key stands for which channel of which chip, and which keys are enumerated. Any thread may call;
/// nothing here waits for a sensor.
class SensorTable {
public:
    struct Target { ///< one channel
        std::shared_ptr<SensorChip> chip;
        size_t channel = 0;
    };

    /// The chips from now on. Channels that had a key keep it; a chip that is gone keeps its keys for the
    /// day it comes back.
    void setChips(const std::vector<std::shared_ptr<SensorChip>>& chips);
    void forget(const SensorChip& chip);

    /// Enumerates the keys that answered for the first time since the last call; their number so far.
    uint32_t publish();
    /// The enumerated key at `index`; 0 beyond the last.
    uint32_t keyAt(uint32_t index) const;

    /// The channels that can answer for `key`, best first; empty for an unknown key.
    std::vector<Target> targets(uint32_t key) const;
    /// The channels that have never answered and would be enumerated if they did.
    std::vector<Target> silent() const;

    std::optional<SensorDescription> describe(uint32_t key, uint64_t nowNs) const;
    /// The enumerated sensors, and those that are kept asleep.
    std::vector<SensorDescription> describeAll(uint64_t nowNs) const;

private:
    const std::string& uniqueName(const SensorChip& chip);
    void assign(const Target& target);
    void assignShared(uint32_t key, std::vector<Target> targets);
    SensorDescription described(const Target& target, uint32_t key, uint64_t nowNs) const;
    std::optional<SensorDescription> describeLocked(uint32_t key, uint64_t nowNs) const;

    mutable std::mutex mutex_; ///< guards everything
    SensorKeys keys_;
    std::vector<std::shared_ptr<SensorChip>> chips_;           ///< in the order in which they get keys
    std::unordered_map<const SensorChip*, std::string> names_; ///< what a chip is known by, unique
    std::unordered_map<uint32_t, std::vector<Target>> targets_;
    std::vector<uint32_t> assigned_; ///< in the order of assignment
    std::vector<uint32_t> published_;
    std::unordered_set<uint32_t> isPublished_;
};

} // namespace sysinfo::platform
