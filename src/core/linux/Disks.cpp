#include "core/linux/BlockDevices.h"
#include "core/linux/DiskStats.h"
#include "core/linux/Readers.h"

namespace sysinfo::platform {

namespace {

/// Collects the drives of the table; false, with `out` incomplete, when the table lists other devices than
/// those that `names` knows.
bool collectDrives(std::string_view table, const DriveNames& names, std::vector<DriveCounters>& out) {
    size_t position = 0, count = 0;
    while (const auto line = takeDiskLine(table)) {
        const auto isDrive = names.known(position++, line->name);
        if (!isDrive) return false;
        if (!*isDrive) continue;
        if (out.size() == count) out.emplace_back();
        out[count].name = line->name;
        out[count++].stats = readDriveStats(line->counters);
    }
    out.resize(count);
    return position == names.size();
}

} // namespace

bool readDriveCounters(Readers& readers, std::vector<DriveCounters>& out) {
    const auto table = readers.diskstats.read();
    if (!table) return false;
    if (collectDrives(*table, readers.driveNames, out)) return true;
    readers.driveNames.forget();
    std::string_view rest = *table;
    while (const auto line = takeDiskLine(rest)) readers.driveNames.learn(readers.root, line->name);
    return collectDrives(*table, readers.driveNames, out);
}

DriveCapacity readDriveCapacity(const SystemRoot& root) {
    DriveCapacity capacity;
    for (const auto& name : physicalDrives(root)) {
        const uint64_t bytes = driveSize(root, name).value_or(0);
        if (bytes == 0) continue;
        capacity.bytes += bytes;
        ++capacity.disks;
    }
    return capacity;
}

} // namespace sysinfo::platform
