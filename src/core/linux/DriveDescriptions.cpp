#include "core/linux/BlockDevices.h"
#include "core/linux/DriveBus.h"
#include "core/linux/Files.h"
#include "core/linux/UdevRecord.h"
#include "core/platform.h"

#include <algorithm>
#include <array>

namespace sysinfo::platform {

namespace {

/// Reads the attributes of one drive below sys/block.
class Drive {
public:
    Drive(const SystemRoot& root, std::string_view name)
        : root_(root), folder_(blockFolder(name)), path_(findPath()), bus_(driveBus(path_)) {}

    DriveDescription describe(std::string_view name) const;

private:
    std::string text(std::string_view attribute) const {
        return readAttribute(root_.path(folder_ + '/' + std::string(attribute))).value_or("");
    }
    std::string findPath() const;
    std::string vendor() const;
    std::string product() const;
    std::string medium(const DriveDescription& drive) const;
    std::string link(const std::string& controller) const;

    const SystemRoot& root_;
    std::string folder_;
    std::string path_; ///< in the device tree, empty when unknown
    DriveBus bus_;
};

std::string Drive::findPath() const {
    const auto target = readLink(root_.path(folder_));
    if (!target) return {};
    if (target->find("/nvme-subsystem/") == std::string::npos) return devicePath(*target);
    // A drive with several controllers hangs below none of them: any one stands for it.
    for (const auto& entry : listFolder(root_.path(folder_ + "/device")))
        if (const auto controller = readLink(root_.path(folder_ + "/device/" + entry));
            controller && controller->find("/nvme/") != std::string::npos)
            return devicePath(*controller);
    return devicePath(*target);
}

std::string Drive::vendor() const {
    const std::string vendor = text("device/vendor");
    // ATA drives have no vendor of their own, and a PCI or virtio number is no name.
    return vendor == "ATA" || vendor.starts_with("0x") ? "" : vendor;
}

std::string Drive::product() const {
    // SCSI cuts the model of an ATA drive to 16 characters; the device manager knows the whole.
    if (text("device/vendor") == "ATA") {
        const auto record = readTable(root_.path("run/udev/data/b" + text("dev")));
        if (const auto model = record ? udevProperty(*record, "ID_MODEL_ENC") : std::nullopt)
            return decodeUdev(*model);
    }
    const std::string model = text("device/model");
    return model.empty() ? text("device/name") : model;
}

std::string Drive::medium(const DriveDescription& drive) const {
    static constexpr std::array<std::string_view, 5> imitations{"QEMU", "VBOX", "VMware", "Virtual", "Msft"};
    const auto imitated = [&](std::string_view maker) {
        return drive.vendor.starts_with(maker) || drive.product.starts_with(maker);
    };
    if (bus_.medium == DriveBus::Medium::virtualMachine ||
        std::any_of(imitations.begin(), imitations.end(), imitated))
        return {};
    const std::string rotational = text("queue/rotational");
    if (rotational == "0") return "SSD";
    // A USB stick that does not answer the question counts as rotating in the kernel.
    const bool stick = drive.interconnect == "USB" && drive.removable;
    return rotational == "1" && !stick ? "HDD" : "";
}

std::string Drive::link(const std::string& controller) const {
    // Asking a suspended controller would resume it.
    const std::string folder = root_.path(controller);
    if (readAttribute(folder + "/power/runtime_status").value_or("").starts_with("suspend")) return {};
    return pcieLink(readAttribute(folder + "/current_link_speed").value_or(""),
                    readAttribute(folder + "/current_link_width").value_or(""));
}

DriveDescription Drive::describe(std::string_view name) const {
    const std::string controller(pciFunction(path_));
    const bool eMmc = text("device/type") == "MMC";
    const bool pluggable =
        !controller.empty() && readAttribute(root_.path(controller) + "/removable") == "removable";

    DriveDescription drive;
    drive.name = name;
    drive.vendor = vendor();
    drive.product = product();
    drive.interconnect = eMmc ? "eMMC" : bus_.interconnect;
    drive.architecture = eMmc ? "eMMC" : bus_.architecture;
    drive.size = driveSize(root_, name).value_or(0);
    drive.removable = text("removable") == "1";
    drive.internal =
        (eMmc || bus_.place == DriveBus::Place::internal) && !path_.empty() && !drive.removable && !pluggable;
    drive.medium = medium(drive);
    if (drive.architecture == "NVMe" && !controller.empty()) drive.link = link(controller);
    return drive;
}

} // namespace

std::vector<DriveDescription> describeDrives(const SystemRoot& root) {
    std::vector<DriveDescription> drives;
    for (const auto& name : physicalDrives(root)) {
        if (driveSize(root, name) == 0u) continue; // a card reader without a card
        drives.push_back(Drive(root, name).describe(name));
    }
    return drives;
}

} // namespace sysinfo::platform
