// The text tables of disks, mounts and interfaces.
#include "Fuzz.h"
#include "core/linux/DiskStats.h"
#include "core/linux/DriveBus.h"
#include "core/linux/MountTable.h"
#include "core/linux/NetDev.h"
#include "core/linux/UdevRecord.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sysinfo::platform;
    const std::string_view text = textOf(data, size);
    std::string_view rest = text;
    while (const auto line = takeDiskLine(rest)) readDriveStats(line->counters);

    const auto table = parseMountInfo(text);
    for (const auto& mount : browsableMounts(table)) {
        require(!mount.point.empty());
        canStall(mount, table);
    }
    parseNetDev(text);
    if (const auto value = udevProperty(text, "ID_MODEL_ENC")) decodeUdev(*value);
    driveBus(text);
    require(pciFunction(text).size() <= text.size());
    devicePath(text);
    pcieLink(text, text.substr(0, 2));
    return 0;
}
