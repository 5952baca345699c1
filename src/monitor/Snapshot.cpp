#include "monitor/Snapshot.h"

namespace quarn {

std::string_view thermalStateName(ThermalState state) {
    switch (state) {
    case ThermalState::nominal: return "nominal";
    case ThermalState::fair: return "elevated";
    case ThermalState::serious: return "serious";
    case ThermalState::critical: return "critical";
    case ThermalState::unknown: break;
    }
    return "unknown";
}

std::string_view diskKind(const DiskDevice& disk) {
    if (disk.architecture == "SD card reader") return "Memory card";
    if (disk.architecture == "Disk image" || disk.interconnect == "Virtual Interface") return "Disk image";
    if (disk.removable && disk.interconnect == "USB") return "Flash drive";
    return disk.isInternal ? "Internal disk" : "External disk";
}

} // namespace quarn
