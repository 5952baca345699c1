#pragma once

#include "core/platform.h"

#include <optional>
#include <string_view>

/// The table of block devices in proc/diskstats: per line two device numbers, the name, and 11, 15 or 17
/// counters depending on the kernel.
namespace sysinfo::platform {

struct DiskLine {
    std::string_view name;
    std::string_view counters; ///< what follows the name
};

/// Takes the next line that names a device off the front of `rest`, skipping others; nullopt at the end.
std::optional<DiskLine> takeDiskLine(std::string_view& rest);

/// The counters of one line. Not ok when one of the first eleven is missing or no number.
DriveStats readDriveStats(std::string_view counters);

} // namespace sysinfo::platform
