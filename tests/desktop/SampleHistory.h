#pragma once

#include "monitor/Snapshot.h"

#include <filesystem>

namespace quarn::testing {

/// Writes the history of two years of a made-up laptop into a new database: office days with builds, idle
/// nights, switched off at times, with more to do of late. A pure function of `now`, rounded to the hour.
void writeSampleHistory(const std::filesystem::path& file, WallTime now);

} // namespace quarn::testing
