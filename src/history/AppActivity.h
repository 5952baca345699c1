#pragma once

#include "core/Text.h"

#include <cstdint>

namespace quarn {

/// What the processes of one application used since the process list before.
struct AppGrowth {
    uint64_t cpuNs = 0;
    uint64_t diskRead = 0; ///< bytes
    uint64_t diskWrite = 0;
    uint64_t contextSwitches = 0;
    uint64_t energyNj = 0; ///< nanojoules
    bool energyKnown = false;
};

/// One application that has processes in a process list.
struct AppActivity {
    sysinfo::Text app; ///< its identity: the path of its bundle or another key that groups its processes
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
