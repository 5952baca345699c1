#pragma once

#include <string>
#include <string_view>

/// What the place of a drive in the device tree tells of it. Pure functions over sysfs paths.
namespace sysinfo::platform {

/// How a drive is attached; texts are empty when the path says nothing.
struct DriveBus {
    std::string_view interconnect; ///< "NVMe", "SATA", "USB", …
    std::string_view architecture; ///< "NVMe", "SATA (AHCI)", "USB Mass Storage", …
    enum class Place { internal, external };
    Place place = Place::internal;
    enum class Medium { real, virtualMachine };
    Medium medium = Medium::real; ///< what it says of rotation is an invention for a virtual machine's disk
};

/// The bus in a path such as "sys/devices/pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda".
DriveBus driveBus(std::string_view devicePath);

/// The part of a device path up to its last PCI function, which is the drive's controller; empty when there
/// is none.
std::string_view pciFunction(std::string_view devicePath);

/// A link target found in a folder of sys ("../devices/pci0000:00/…", "../../../pci0000:00/…") as a path
/// below the root ("sys/devices/pci0000:00/…").
std::string devicePath(std::string_view linkTarget);

/// "PCIe 4.0 x4" from the attributes current_link_speed ("16.0 GT/s PCIe") and current_link_width ("4"),
/// "PCIe x4" for another speed, empty without a width.
std::string pcieLink(std::string_view speed, std::string_view width);

} // namespace sysinfo::platform
