#include "core/linux/LinkMedia.h"

#include "core/UniqueFd.h"
#include "core/linux/Files.h"
#include "core/linux/LinkTraits.h"

#include <array>
#include <cstring>
#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace sysinfo::platform {

namespace {

/// One exchange with the driver. The kernel appends masks of link modes and first says how many words it
/// wants, so the request is bytes with room for them.
class SettingsRequest {
public:
    bool send(int fd, const std::string& name, int8_t maskWords) {
        ethtool_link_settings question{};
        question.cmd = ETHTOOL_GLINKSETTINGS;
        question.link_mode_masks_nwords = maskWords;
        std::memcpy(bytes_.data(), &question, sizeof question);
        ifreq interface {};
        name.copy(interface.ifr_name, IFNAMSIZ - 1);
        interface.ifr_data = bytes_.data();
        return ::ioctl(fd, SIOCETHTOOL, &interface) == 0;
    }
    ethtool_link_settings answer() const {
        ethtool_link_settings settings{};
        std::memcpy(&settings, bytes_.data(), sizeof settings);
        return settings;
    }

private:
    static constexpr size_t mostWords = 3 * INT8_MAX;
    alignas(8) std::array<char, sizeof(ethtool_link_settings) + mostWords * sizeof(uint32_t)> bytes_{};
};

std::optional<LinkSettings> askDriver(const std::string& name) {
    const scutil::UniqueFd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    SettingsRequest request;
    if (!fd || !request.send(fd.get(), name, 0)) return {};
    const int words = -request.answer().link_mode_masks_nwords; // negated where the number was not the one
    if (words <= 0 || !request.send(fd.get(), name, static_cast<int8_t>(words))) return {};
    const auto settings = request.answer();
    return LinkSettings{settings.speed, settings.duplex, settings.port, settings.autoneg};
}

std::optional<LinkSettings> readSettings(const std::string& folder) {
    const auto speed = readNumber(folder + "/speed");
    const auto duplex = readAttribute(folder + "/duplex");
    if (!speed && !duplex) return {};
    LinkSettings settings;
    settings.speed = speed && *speed > 0 ? static_cast<uint32_t>(*speed) : 0;
    settings.duplex = duplex == "full" ? DUPLEX_FULL : duplex == "half" ? DUPLEX_HALF : DUPLEX_UNKNOWN;
    return settings;
}

bool isWireless(const std::string& folder, const LinkTraits& traits) {
    return traits.deviceType == "wlan" || exists(folder + "/phy80211") || exists(folder + "/wireless");
}

bool sleeps(const std::string& folder) {
    return readAttribute(folder + "/device/power/runtime_status").value_or("").starts_with("suspend");
}

} // namespace

Media wiredMedia(const LinkSettings& settings, bool active) {
    Media media;
    media.kind = Media::Kind::wired;
    media.active = active;
    media.negotiates = settings.negotiation == AUTONEG_ENABLE;
    const bool unknownSpeed = settings.speed == static_cast<uint32_t>(SPEED_UNKNOWN);
    media.speedMbps = unknownSpeed ? 0 : settings.speed;
    if (settings.duplex == DUPLEX_FULL) media.duplex = Media::Duplex::full;
    if (settings.duplex == DUPLEX_HALF) media.duplex = Media::Duplex::half;
    const bool fibre = settings.port == PORT_FIBRE || settings.port == PORT_DA;
    media.connector = fibre ? Media::Connector::other : Media::Connector::copper;
    return media;
}

Media readMedia(const SystemRoot& root, const std::string& name, std::string_view kind, bool active) {
    const std::string folder = root.path("sys/class/net/" + name);
    LinkTraits traits = readLinkTraits(root, name);
    traits.kind = kind;
    const bool addsUpPorts = kind == "bond" || kind == "team" || exists(folder + "/bonding");
    const bool isPort = traits.physical && (kind.empty() || kind == "ipoib") &&
                        (traits.hardwareType == ARPHRD_ETHER || traits.hardwareType == ARPHRD_INFINIBAND);
    if (!isPort && !addsUpPorts) return {};

    if (isWireless(folder, traits)) {
        Media media;
        media.kind = Media::Kind::wireless;
        media.active = active;
        return media;
    }
    if (root.isHost() && sleeps(folder)) return wiredMedia({}, false);
    const auto settings = root.isHost() ? askDriver(name) : readSettings(folder);
    return settings ? wiredMedia(*settings, active) : Media{};
}

} // namespace sysinfo::platform
