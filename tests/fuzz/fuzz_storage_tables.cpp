// The text tables of disks, mounts and interfaces.
#include "core/linux/DiskStats.h"
#include "core/linux/DriveBus.h"
#include "core/linux/MountTable.h"
#include "core/linux/NetDev.h"
#include "core/linux/UdevRecord.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sysinfo::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string_view rest = text;
    while (const auto line = takeDiskLine(rest)) readDriveStats(line->counters);

    const auto table = parseMountInfo(text);
    for (const auto& mount : browsableMounts(table)) {
        if (mount.point.empty()) std::abort();
        canStall(mount, table);
    }
    parseNetDev(text);
    if (const auto value = udevProperty(text, "ID_MODEL_ENC")) decodeUdev(*value);
    driveBus(text);
    if (pciFunction(text).size() > text.size()) std::abort();
    devicePath(text);
    pcieLink(text, text.substr(0, 2));
    return 0;
}
