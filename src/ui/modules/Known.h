#pragma once

#include "core/SystemRoot.h"
#include "monitor/Snapshot.h"

namespace quarn {

/// Which flat figures of one snapshot are readings, and which are zeros that only fill their place. What a
/// record says of itself (an optional, a flag, a −1) is not repeated here.
struct Known {
    bool rates = true;        ///< of memory, disks and network: they need two samples
    bool processRates = true; ///< they need two process lists
    bool cpu = true;          ///< shares of time; they need two samples too
    bool memory = true;       ///< how much there is
    bool memoryParts = true;  ///< what it is used for
    bool uptime = true;
    bool network = true;
    bool disk = true;
    sysinfo::platform::MemoryCapabilities capabilities{};
};

/// Of before the first snapshot.
constexpr Known nothingKnown() {
    return {.rates = false,
            .processRates = false,
            .cpu = false,
            .memory = false,
            .memoryParts = false,
            .uptime = false,
            .network = false,
            .disk = false};
}

/// `root` is where the snapshot was taken: under a captured machine a missing file leaves zeros.
Known knownIn(const Snapshot& snapshot, const sysinfo::SystemRoot& root);

} // namespace quarn
