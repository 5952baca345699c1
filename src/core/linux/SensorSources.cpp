#include "core/linux/SensorSources.h"

#include "core/linux/Files.h"
#include "core/linux/SensorAppleKeys.h"
#include "core/linux/SensorHwmon.h"
#include "core/linux/SensorSupply.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr const char* hwmonFolder = "sys/class/hwmon";
constexpr const char* zonesFolder = "sys/class/thermal";
constexpr const char* suppliesFolder = "sys/class/power_supply";
constexpr const char* energyFolder = "sys/class/powercap";

} // namespace

bool SensorSources::lookOver(const SensorIo& io) {
    lost_.clear();
    if (isFirst_) appleKeys_ = openAppleKeys(root_, io);
    auto sources = list();
    if (!isFirst_ && sources == sources_) return false;
    isFirst_ = false;
    open(std::move(sources));
    if (!hasTemperature() && !usesZones_) {
        usesZones_ = true;
        open(list());
    }
    return true;
}

bool SensorSources::hasTemperature() const {
    return std::any_of(chips_.begin(), chips_.end(), [this](const auto& chip) {
        return chip == appleKeys_ ||
               std::any_of(chip->channels.begin(), chip->channels.end(), [](const SensorChannel& channel) {
                   return channel.kind == SensorKind::temperature;
               });
    });
}

std::vector<SensorSources::Source> SensorSources::list() const {
    std::vector<Source> sources;
    const auto addEntries = [&](const std::string& folder) {
        auto names = listFolder(root_.path(folder));
        // hwmon2 before hwmon10: among equal chips the lower number is the first.
        std::stable_sort(names.begin(), names.end(),
                         [](const auto& a, const auto& b) { return a.size() < b.size(); });
        for (const std::string& name : names) {
            const std::string entry = folder + '/' + name;
            sources.emplace_back(entry, readLink(root_.path(entry)).value_or(""));
        }
    };
    addEntries(hwmonFolder);
    if (usesZones_) addEntries(zonesFolder);
    std::string supplies;
    for (const std::string& name : listFolder(root_.path(suppliesFolder))) supplies += name + '/';
    sources.emplace_back(suppliesFolder, supplies);
    sources.emplace_back(energyFolder, "");
    return sources;
}

void SensorSources::open(std::vector<Source> sources) {
    std::map<Source, std::shared_ptr<SensorChip>> opened;
    chips_.clear();
    if (appleKeys_) chips_.push_back(appleKeys_);
    for (const Source& source : sources) {
        const auto known = opened_.find(source);
        const auto chip = known != opened_.end() ? known->second : openChip(source);
        opened[source] = chip;
        if (chip) chips_.push_back(chip);
    }
    for (const auto& [source, chip] : opened_) {
        if (chip && !opened.contains(source)) lost_.push_back(chip);
    }
    opened_ = std::move(opened);
    sources_ = std::move(sources);
}

std::shared_ptr<SensorChip> SensorSources::openChip(const Source& source) const {
    const std::string& place = source.first;
    if (place == suppliesFolder) return openSupplies(root_);
    if (place == energyFolder) return openPlatformEnergy(root_);
    const std::string entry = place.substr(place.rfind('/') + 1);
    if (place.starts_with(zonesFolder)) return openThermalZone(root_, entry);
    auto chip = openHwmonChip(root_, entry);
    // The driver's hwmon folder repeats what its key files tell.
    return chip && appleKeys_ && chip->identity.name == "applesmc" ? nullptr : chip;
}

} // namespace sysinfo::platform
