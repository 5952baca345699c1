#pragma once

#include "core/linux/SensorChip.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sysinfo::platform {

/// Finds the chips of a machine: the Apple SMC driver's key files, then hwmon, then, where neither has a
/// temperature, the thermal zones; and the power supplies and the platform energy counter.
class SensorSources {
public:
    using Chips = std::vector<std::shared_ptr<SensorChip>>;

    explicit SensorSources(const SystemRoot& root) : root_(root) {}

    /// Looks the class folders over; true when the chips are others than before. A chip that is still there
    /// stays the same object. Opens and reads names only, no sensor.
    bool lookOver(const SensorIo& io);

    const Chips& chips() const { return chips_; }
    /// Those of the former chips that the last look no longer found.
    const Chips& lost() const { return lost_; }

private:
    using Source = std::pair<std::string, std::string>; ///< a folder entry and where its link leads

    std::vector<Source> list() const;
    void open(std::vector<Source> sources);
    std::shared_ptr<SensorChip> openChip(const Source& source) const;
    bool hasTemperature() const;

    const SystemRoot root_;
    bool isFirst_ = true;
    bool usesZones_ = false; ///< for good, once no temperature was found elsewhere
    std::shared_ptr<SensorChip> appleKeys_;
    std::vector<Source> sources_;
    std::map<Source, std::shared_ptr<SensorChip>> opened_; ///< null for a source without sensors
    Chips chips_;
    Chips lost_;
};

} // namespace sysinfo::platform
