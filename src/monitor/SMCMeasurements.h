#pragma once

#include "monitor/Snapshot.h"

#include <set>
#include <string>
#include <vector>

namespace quarn {

/// Controllers and boards list many supply rails that nothing is connected to; they read 0 for ever. A rail
/// is shown from the first reading that is not 0, and from then on also at 0, so that a rail that idles does
/// not come and go.
class SMCMeasurements {
public:
    struct Electrical {
        std::vector<Sensor> power; ///< watts
        std::vector<Sensor> voltage;
        std::vector<Sensor> current; ///< amperes
        std::set<std::string> verified;
    };

    /// The readings worth showing of those given, in their order, and the rails verified so far: the keys
    /// that once carried a live value. A power key that is verified vouches for the voltage and the current
    /// of its rail, whose keys differ from it in the first character only. Readings that no supply of a
    /// computer gives (beyond 10,000 W, 1,000 V, 1,000 A, or not finite) are left out.
    static Electrical electrical(const std::vector<Sensor>& power, const std::vector<Sensor>& voltage,
                                 const std::vector<Sensor>& current,
                                 std::set<std::string> previouslyVerified);
};

} // namespace quarn
