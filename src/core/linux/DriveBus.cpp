#include "core/linux/DriveBus.h"

#include "core/Scan.h"

#include <array>
#include <utility>

namespace sysinfo::platform {

namespace {

/// Whether a path component is `prefix` followed by a number ("ata" and "ata12", not "atapi").
bool isNumbered(std::string_view component, std::string_view prefix) {
    return component.starts_with(prefix) && component.size() > prefix.size() &&
           scutil::isDigit(component[prefix.size()]);
}

bool startsWith(std::string_view component, std::string_view text) { return component.starts_with(text); }
bool isText(std::string_view component, std::string_view text) { return component == text; }
bool holds(std::string_view component, std::string_view text) {
    return component.find(text) != std::string_view::npos;
}

struct BusRule {
    bool (*matches)(std::string_view component, std::string_view text);
    std::string_view text;
    DriveBus bus;
};

using Place = DriveBus::Place;
using Medium = DriveBus::Medium;

// The first rule that any component of the path satisfies decides: transports before the SCSI layer that
// most of them sit on, the outer bus of a virtual machine before what it imitates.
constexpr std::array<BusRule, 18> busRules{{
    {isText, "mmc_host", {"Secure Digital", "SD card reader", Place::external, Medium::real}},
    {isNumbered, "usb", {"USB", "USB Mass Storage", Place::external, Medium::real}},
    {isText, "nvme", {"NVMe", "NVMe", Place::internal, Medium::real}},
    {isText, "nvme-subsystem", {"NVMe", "NVMe", Place::internal, Medium::real}},
    {isNumbered, "virtio", {"Virtio", "Virtio", Place::internal, Medium::virtualMachine}},
    {startsWith, "vbd-", {"Xen", "Xen", Place::internal, Medium::virtualMachine}},
    {startsWith, "VMBUS:", {"VMBus", "Hyper-V", Place::internal, Medium::virtualMachine}},
    {startsWith, "MSFT1000:", {"VMBus", "Hyper-V", Place::internal, Medium::virtualMachine}},
    {isNumbered, "ata", {"SATA", "SATA (AHCI)", Place::internal, Medium::real}},
    {isNumbered, "session", {"iSCSI", "iSCSI", Place::external, Medium::virtualMachine}},
    {startsWith, "rport-", {"Fibre Channel", "Fibre Channel", Place::external, Medium::real}},
    {startsWith, "end_device-", {"SAS", "SAS", Place::internal, Medium::real}},
    {isNumbered, "fw", {"FireWire", "FireWire", Place::external, Medium::real}},
    {isNumbered, "ndbus", {"Memory bus", "Persistent memory", Place::internal, Medium::real}},
    {holds, ".ufs", {"UFS", "UFS", Place::internal, Medium::real}},
    {holds, "ufshc", {"UFS", "UFS", Place::internal, Medium::real}},
    {startsWith, "pseudo_", {"", "", Place::internal, Medium::virtualMachine}},
    {isNumbered, "host", {"SCSI", "SCSI", Place::internal, Medium::real}},
}};

bool anyComponent(std::string_view path, const BusRule& rule) {
    while (!path.empty())
        if (rule.matches(scutil::takeUntil(path, '/'), rule.text)) return true;
    return false;
}

/// "0000:01:00.0"
bool isPciFunction(std::string_view component) {
    const size_t domain = component.find(':');
    if (domain == std::string_view::npos || component.size() < domain + 8) return false;
    const std::string_view rest = component.substr(domain);
    if (rest[0] != ':' || rest[3] != ':' || rest[6] != '.') return false;
    return component.substr(0, domain).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace

DriveBus driveBus(std::string_view devicePath) {
    for (const auto& rule : busRules)
        if (anyComponent(devicePath, rule)) return rule.bus;
    return {};
}

std::string_view pciFunction(std::string_view devicePath) {
    size_t end = 0;
    for (std::string_view rest = devicePath; !rest.empty();) {
        const std::string_view component = scutil::takeUntil(rest, '/');
        if (isPciFunction(component))
            end = static_cast<size_t>(component.data() - devicePath.data()) + component.size();
    }
    return devicePath.substr(0, end);
}

std::string devicePath(std::string_view linkTarget) {
    while (linkTarget.starts_with("../")) linkTarget.remove_prefix(3);
    return (linkTarget.starts_with("devices/") ? "sys/" : "sys/devices/") + std::string(linkTarget);
}

std::string pcieLink(std::string_view speed, std::string_view width) {
    constexpr int widestLink = 32; // a device that fell off its bus reports 63 or 255
    const auto lanes = scutil::toNumber<int>(width);
    if (!lanes || *lanes < 1 || *lanes > widestLink) return {};
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> generations{
        {{"2.5", "1.0"}, {"5", "2.0"}, {"8", "3.0"}, {"16", "4.0"}, {"32", "5.0"}}};
    std::string_view rate = scutil::takeWord(speed);
    if (rate.ends_with(".0")) rate.remove_suffix(2); // older kernels write "8 GT/s"
    std::string link = "PCIe ";
    for (const auto& [gigatransfers, generation] : generations)
        if (rate == gigatransfers) link.append(generation).append(" ");
    return link + "x" + std::to_string(*lanes);
}

} // namespace sysinfo::platform
