#include "core/linux/SensorHwmon.h"

#include "core/CleanText.h"
#include "core/linux/Files.h"

#include <filesystem>
#include <map>

namespace sysinfo::platform {

namespace {

struct ChannelFiles {
    KeptAttribute input;
    KeptAttribute fault;
    KeptAttribute enable;
    KeptAttribute max;
    KeptAttribute crit;
};

double scaleOf(SensorKind kind) {
    switch (kind) {
    case SensorKind::fan: return 1;
    case SensorKind::power: return 1e-6;
    default: return 1e-3;
    }
}

class HwmonChip final : public SensorChip {
public:
    HwmonChip(ChipIdentity chip, std::vector<SensorChannel> list, std::vector<ChannelFiles> files,
              SensorGuard guard)
        : SensorChip(std::move(chip), std::move(list), std::move(guard)), files_(std::move(files)) {}

private:
    void read(const SensorIo& io, std::span<const size_t>) override {
        for (size_t i = 0; i < channels.size(); ++i) {
            if (!mayTry(i, io.nowNs())) continue;
            reportValue(io, i, valueOf(io, i));
        }
    }

    std::optional<double> valueOf(const SensorIo& io, size_t channel) {
        ChannelFiles& files = files_[channel];
        if (readInteger(io, files.enable).value_or(1) == 0) return {};
        if (readInteger(io, files.fault).value_or(0) != 0) return {};
        const auto raw = readInteger(io, files.input);
        if (!raw) return {};
        return static_cast<double>(*raw) * scaleOf(channels[channel].kind);
    }

    SensorLimits readLimits(const SensorIo& io, size_t channel) override {
        const SensorKind kind = channels[channel].kind;
        const auto limit = [&](KeptAttribute& attribute) -> std::optional<double> {
            const auto raw = readInteger(io, attribute);
            attribute.fd.reset(); // asked once
            return raw ? plausibleLimit(kind, static_cast<double>(*raw) * scaleOf(kind)) : std::nullopt;
        };
        return {limit(files_[channel].max), limit(files_[channel].crit)};
    }

    std::vector<ChannelFiles> files_;
};

// ---- Finding out what a chip is

std::string resolved(const std::string& path) {
    std::error_code failed;
    const auto real = std::filesystem::canonical(path, failed);
    return failed ? std::string() : real.string();
}

// The device that carries the chip: its link, or else the folder around "hwmon/hwmonN".
std::string deviceOf(const std::string& folder) {
    std::string linked = resolved(folder + "/device");
    if (!linked.empty()) return linked;
    const std::filesystem::path real = resolved(folder);
    const auto above = real.parent_path();
    return above.filename() == "hwmon" && above.parent_path().filename() != "class"
               ? above.parent_path().string()
               : std::string();
}

std::string attributeText(const std::string& path) {
    const auto text = readAttribute(path);
    return text ? scutil::cleanText(*text) : std::string();
}

// What stays the same over a reboot. A serial number is best; numbers given in the order of probing
// (nvme0, host1) are left out.
std::string stablePlace(const std::string& device, const SystemRoot& root) {
    for (const char* serial : {"/serial", "/wwid"}) {
        auto text = attributeText(device + serial);
        if (!text.empty()) return text;
    }
    std::string place = device;
    const std::string top = resolved(root.path("sys"));
    if (place.starts_with(top)) place.erase(0, top.size());
    for (const char* numbered : {"/nvme/nvme", "/host"}) {
        const size_t at = place.rfind(numbered);
        if (at != std::string::npos) place.erase(at);
    }
    return place;
}

std::string displayName(const std::string& name, const std::string& device, SensorClass sensorClass) {
    const bool isDisk = sensorClass == SensorClass::disk || sensorClass == SensorClass::nvme;
    const std::string model = isDisk && !device.empty() ? attributeText(device + "/model") : std::string();
    if (model.empty()) return name.empty() ? "unnamed chip" : name;
    return sensorClass == SensorClass::nvme ? "NVMe " + model : model;
}

ChipIdentity identify(const SystemRoot& root, const std::string& entry, const std::string& folder,
                      const std::string& base) {
    ChipIdentity chip;
    const std::string device = deviceOf(folder);
    chip.name = attributeText(base + "/name");
    if (chip.name.empty() && !device.empty()) {
        chip.name = std::filesystem::path(readLink(device + "/driver").value_or("")).filename().string();
    }
    const auto pciClass = device.empty() ? std::nullopt : readNumber(device + "/class");
    chip.sensorClass = classOfChip(chip.name, device, static_cast<uint32_t>(pciClass.value_or(0)));
    chip.display = displayName(chip.name, device, chip.sensorClass);
    chip.device = device.empty() ? entry : std::filesystem::path(device).filename().string();
    chip.text = chip.name + '|' + (device.empty() ? entry : stablePlace(device, root));
    return chip;
}

SensorChannel::Role roleOf(const SensorChannel& channel, const ChipIdentity& chip) {
    if (channel.kind != SensorKind::power) return SensorChannel::Role::own;
    if (measuresSystemPower(chip.name, channel.label)) return SensorChannel::Role::systemPower;
    if (measuresInputPower(chip.name, channel.label)) return SensorChannel::Role::inputPower;
    return SensorChannel::Role::own;
}

// ---- Finding its sensors

struct Found {
    ChannelFiles files;
    std::string average;
    std::string label;
};

std::map<std::pair<SensorKind, int>, Found> findSensors(const std::string& base) {
    std::map<std::pair<SensorKind, int>, Found> sensors;
    for (const std::string& name : listFolder(base)) {
        const HwmonAttribute attribute = parseHwmonAttribute(name);
        if (attribute.number < 0) continue;
        Found& sensor = sensors[{attribute.kind, attribute.number}];
        const std::string path = base + '/' + name;
        using Item = HwmonAttribute::Item;
        switch (attribute.item) {
        case Item::input: sensor.files.input.path = path; break;
        case Item::average: sensor.average = path; break;
        case Item::label: sensor.label = attributeText(path); break;
        case Item::max: sensor.files.max.path = path; break;
        case Item::crit: sensor.files.crit.path = path; break;
        case Item::fault: sensor.files.fault.path = path; break;
        // A fan's switch chooses who controls it; its speed is measured either way.
        case Item::enable:
            if (attribute.kind != SensorKind::fan) sensor.files.enable.path = path;
            break;
        case Item::other: break;
        }
    }
    return sensors;
}

// The Apple SMC driver labels its temperatures with the controller's own keys, and counts fans from 1.
uint32_t appleKey(const std::string& chipName, SensorKind kind, const Found& sensor) {
    if (chipName != "applesmc" || kind != SensorKind::temperature) return 0;
    return sensor.label.starts_with('T') ? smcCode(sensor.label) : 0;
}

} // namespace

std::optional<double> plausibleLimit(SensorKind kind, double value) {
    const double largest = kind == SensorKind::temperature ? 200 : 100'000;
    return value > 0 && value < largest ? std::optional(value) : std::nullopt;
}

std::shared_ptr<SensorChip> openHwmonChip(const SystemRoot& root, const std::string& entry) {
    const std::string folder = root.path("sys/class/hwmon/" + entry);
    const bool isOld = !exists(folder + "/name") && exists(folder + "/device/name");
    const std::string base = isOld ? folder + "/device" : folder;
    const ChipIdentity chip = identify(root, entry, folder, base);
    if (readAttribute(folder + "/device/scope") == "Device") return nullptr;

    std::vector<SensorChannel> channels;
    std::vector<ChannelFiles> files;
    for (auto& [place, sensor] : findSensors(base)) {
        if (sensor.files.input.path.empty()) sensor.files.input.path = sensor.average;
        if (sensor.files.input.path.empty()) continue;
        SensorChannel channel;
        channel.kind = place.first;
        channel.number = place.second;
        channel.label = sensor.label;
        channel.namedKey = appleKey(chip.name, place.first, sensor);
        channel.role = roleOf(channel, chip);
        channels.push_back(std::move(channel));
        files.push_back(std::move(sensor.files));
    }
    if (channels.empty()) return nullptr;
    return std::make_shared<HwmonChip>(chip, std::move(channels), std::move(files),
                                       SensorGuard(deviceOf(folder)));
}

std::shared_ptr<SensorChip> openThermalZone(const SystemRoot& root, const std::string& entry) {
    const std::string folder = root.path("sys/class/thermal/" + entry);
    if (!entry.starts_with("thermal_zone") || !exists(folder + "/temp")) return nullptr;
    const std::string type = attributeText(folder + "/type");
    ChipIdentity chip{"zone|" + type, type, "thermal zone", entry, classOfChip(type, "", 0)};
    SensorChannel channel;
    channel.label = type;
    std::vector<ChannelFiles> files(1);
    files[0].input.path = folder + "/temp";
    return std::make_shared<HwmonChip>(std::move(chip), std::vector{std::move(channel)}, std::move(files),
                                       SensorGuard());
}

} // namespace sysinfo::platform
