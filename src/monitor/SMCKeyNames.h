#pragma once

#include "core/SMC.h"

#include <string>
#include <string_view>

namespace quarn {

/// Names of sensors for people.
class SMCKeyNames {
public:
    /// The name of the key on the machine behind `smc`: what its driver calls the sensor, put into plain
    /// words, and the chip ("CPU package (coretemp)"); else the name in the table of well-known keys; else
    /// the key itself. Cheap and never waits for a sensor. Any thread.
    static std::string describe(std::string_view key, const sysinfo::SMC& smc = sysinfo::SMC::get());

    /// The name in the table of well-known keys; empty when it is not there.
    static std::string wellKnown(std::string_view key);

    /// The first of these for a sensor at hand.
    static std::string describe(const sysinfo::SensorDescription& sensor);
};

} // namespace quarn
