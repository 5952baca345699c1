#pragma once

#include "core/linux/SensorClass.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace sysinfo::platform {

/// Gives each sensor its four-character key: kind, class, a character for the chip and one for the sensor's
/// number in it, as in "TC41".
///
/// The chip's character comes from what the chip is and where it sits, not from the order in which drivers
/// loaded, so that a key means the same sensor after the next boot. Where two chips or sensors ask for the
/// same place, the later one takes the next free place; callers assign in a fixed order. Fans count from
/// "F0Ac" to "FFAc": the seventeenth fan and later ones get no key.
///
/// A key, once given, belongs to its sensor for the life of this object, also while the chip is away.
class SensorKeys {
public:
    /// The key of sensor `number` of the chip `identity`; 0 when there is no place left.
    uint32_t assign(SensorKind kind, SensorClass sensorClass, std::string_view identity, int number);

    /// The key that the hardware itself gives to a sensor; 0 when another sensor has it.
    uint32_t assignNamed(uint32_t key, std::string_view identity, int number);

private:
    using Owner = std::pair<std::string, int>; ///< kind, class and chip; number

    size_t rowOf(SensorClass sensorClass, std::string_view identity);
    uint32_t firstFree(SensorKind kind, SensorClass sensorClass, size_t row, int number);
    uint32_t firstFreeFan();
    bool take(uint32_t key) { return taken_.insert(key).second; }

    std::map<Owner, uint32_t> keys_;
    std::map<std::pair<SensorClass, std::string>, size_t> rows_;
    std::unordered_set<uint32_t> taken_;
};

} // namespace sysinfo::platform
