#include "core/linux/LinkTraits.h"

#include "core/Scan.h"
#include "core/linux/Files.h"
#include "core/platform.h"

#include <algorithm>
#include <array>
#include <net/if_arp.h>

namespace sysinfo::platform {

namespace {

std::string classFolder(const SystemRoot& root, std::string_view name) {
    return root.path("sys/class/net/") + std::string(name);
}

/// A link without a device is kept under devices/virtual. Captures may lack the one sign or the other.
bool isPhysical(const std::string& folder) {
    if (readLink(folder + "/device") || exists(folder + "/device")) return true;
    const auto place = readLink(folder);
    return place && place->find("devices/") != std::string::npos &&
           place->find("devices/virtual/") == std::string::npos;
}

std::string readDeviceType(const std::string& folder) {
    const auto events = readAttribute(folder + "/uevent");
    std::string_view rest = events ? std::string_view(*events) : std::string_view();
    while (!rest.empty()) {
        std::string_view line = scutil::takeLine(rest);
        if (scutil::takeUntil(line, '=') == "DEVTYPE") return std::string(line);
    }
    return {};
}

/// The naming schemes of kernel and device manager for hardware.
LinkTraits traitsByName(std::string_view name) {
    static constexpr std::array<std::string_view, 5> ports{"eth", "en", "wl", "ib", "usb"};
    LinkTraits traits;
    traits.hardwareType = ARPHRD_ETHER;
    if (name.starts_with("ww")) traits.deviceType = "wwan";
    traits.physical = !traits.deviceType.empty() ||
                      std::any_of(ports.begin(), ports.end(),
                                  [&](std::string_view prefix) { return name.starts_with(prefix); });
    return traits;
}

} // namespace

uint8_t linkType(const LinkTraits& traits) {
    if (traits.kind == "wwan" || (traits.physical && traits.deviceType == "wwan")) return linkTypeCellular;
    // InfiniBand ports are hardware although their driver registers a kind.
    const bool madeInSoftware = !traits.kind.empty() && traits.kind != "ipoib";
    if (!traits.physical || traits.underPhysical || madeInSoftware) return linkTypeOther;
    if (traits.deviceType == "dsa") return linkTypeOther; // a switch port, counted at the port behind it
    const bool carriesPackets =
        traits.hardwareType == ARPHRD_ETHER || traits.hardwareType == ARPHRD_INFINIBAND;
    return carriesPackets ? linkTypeEthernet : linkTypeOther;
}

LinkTraits readLinkTraits(const SystemRoot& root, std::string_view name) {
    const std::string folder = classFolder(root, name);
    if (!exists(folder) && !readLink(folder)) return traitsByName(name);
    LinkTraits traits;
    traits.hardwareType =
        static_cast<uint16_t>(readNumber(folder + "/type").value_or(static_cast<long long>(ARPHRD_ETHER)));
    traits.deviceType = readDeviceType(folder);
    traits.physical = isPhysical(folder);
    if (const auto master = readLink(folder + "/master")) {
        const std::string_view masterName = std::string_view(*master).substr(master->rfind('/') + 1);
        traits.underPhysical = isPhysical(classFolder(root, masterName));
    }
    return traits;
}

} // namespace sysinfo::platform
