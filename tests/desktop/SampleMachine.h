#pragma once

#include "monitor/Snapshot.h"
#include "ui/modules/Known.h"
#include "ui/modules/LiveHistory.h"

#include <filesystem>

namespace quarn::testing {

class TempRoot;

/// A machine with everything: a laptop of eight cores with sensors, battery, GPU, two disks and some traffic.
/// A pure function of its arguments, so that pictures and tests are the same each time.
struct SampleMachine {
    size_t cores = 8;
    size_t processes = 180;

    /// Its state `tick` seconds after it was first sampled.
    Snapshot at(int tick) const;
    /// The readings of the first `ticks` seconds.
    LiveHistory history(int ticks) const;

    static Known known() { return {}; }
    /// Writes the files that name its sensors and tell of its sockets.
    static void capture(TempRoot& root);
};

/// Writes the history of two years of a made-up laptop into a new database: office days with builds, idle
/// nights, switched off at times, with more to do of late. A pure function of `now`, rounded to the hour.
void writeSampleHistory(const std::filesystem::path& file, WallTime now);

} // namespace quarn::testing
