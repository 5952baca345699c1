#include "core/linux/DiskStats.h"

#include "core/Scan.h"

#include <array>

namespace sysinfo::platform {

namespace {

constexpr uint64_t sectorBytes = 512; // of these counters, whatever the drive's own sector is
constexpr uint64_t nsPerMs = 1'000'000;

} // namespace

std::optional<DiskLine> takeDiskLine(std::string_view& rest) {
    while (!rest.empty()) {
        std::string_view line = scutil::takeLine(rest);
        const auto major = scutil::toNumber<uint32_t>(scutil::takeWord(line));
        const auto minor = scutil::toNumber<uint32_t>(scutil::takeWord(line));
        const auto name = scutil::takeWord(line);
        if (major && minor && !name.empty()) return DiskLine{name, line};
    }
    return {};
}

DriveStats readDriveStats(std::string_view counters) {
    enum Column { reads, readsMerged, sectorsRead, msRead, writes, writesMerged, sectorsWritten, msWritten };
    std::array<uint64_t, 11> value;
    for (auto& column : value) {
        const auto number = scutil::toNumber<uint64_t>(scutil::takeWord(counters));
        if (!number) return {};
        column = *number;
    }
    DriveStats stats;
    stats.bytesRead = value[sectorsRead] * sectorBytes;
    stats.bytesWritten = value[sectorsWritten] * sectorBytes;
    stats.opsRead = value[reads];
    stats.opsWritten = value[writes];
    stats.timeReadNs = value[msRead] * nsPerMs;
    stats.timeWriteNs = value[msWritten] * nsPerMs;
    stats.ok = true;
    return stats;
}

} // namespace sysinfo::platform
