#pragma once

#include "core/Text.h"

#include <cstdint>

namespace quarn {

/// What processes did between two process lists.
struct AppGrowth {
    uint64_t cpuNs = 0;
    uint64_t diskRead = 0; ///< bytes
    uint64_t diskWrite = 0;
    uint64_t contextSwitches = 0;
    uint64_t energyNj = 0;    ///< nanojoules
    bool energyKnown = false; ///< one of them told its energy both times

    AppGrowth& operator+=(const AppGrowth& other) {
        cpuNs += other.cpuNs;
        diskRead += other.diskRead;
        diskWrite += other.diskWrite;
        contextSwitches += other.contextSwitches;
        energyNj += other.energyNj;
        energyKnown |= other.energyKnown;
        return *this;
    }
};

/// One application that has processes in a process list.
struct AppActivity {
    sysinfo::Text app; ///< its key, see ProcessOwner::app
    uint64_t memBytes = 0;
    AppGrowth growth;
};

/// Bytes that one application received and sent in an interval.
struct AppTraffic {
    sysinfo::Text app;
    uint64_t received = 0;
    uint64_t sent = 0;
};

} // namespace quarn
