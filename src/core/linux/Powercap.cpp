#include "core/linux/Powercap.h"

#include "core/linux/Files.h"

#include <algorithm>
#include <map>

namespace sysinfo::platform {

namespace {

constexpr double mostCredibleWatts = 10'000; // of one counter, after which a fall is no wrap
constexpr double wrapSafeWatts = 500;        // below which no wrap can have gone unseen

std::string_view driverOf(std::string_view id) { return id.substr(0, id.find(':')); }

/// "intel-rapl:0" of "intel-rapl:0:1"; empty for what is no part.
std::string_view parentOf(std::string_view id) {
    const size_t last = id.rfind(':');
    return last == id.find(':') ? std::string_view() : id.substr(0, last);
}

/// Zones in `folder` and below. The class folder links every zone; a capture may keep the nested folders
/// only.
void collect(const std::string& folder, int depth, std::map<std::string, std::string>& folders) {
    for (const std::string& name : listFolder(folder)) {
        const std::string path = folder + name + '/';
        const bool isZone = name.find(':') != std::string::npos;
        if (isZone) folders.emplace(name, path);
        // Drivers at the top hold zones, zones hold zones; whatever else lies there may lead back up.
        if (depth < 3 && isZone == (depth > 0)) collect(path, depth + 1, folders);
    }
}

bool isPackage(const PowercapZone& zone) { return zone.name.starts_with("package"); }

} // namespace

uint64_t EnergyCounter::advance(uint64_t raw, uint64_t range, double seconds) {
    if (!last_) {
        last_ = raw;
        return total_;
    }
    const double rangeJoules = static_cast<double>(range) / 1e6;
    const bool mayHaveWrappedUnseen = range > 0 && seconds * wrapSafeWatts > rangeJoules;
    uint64_t step = 0;
    bool comparable = !mayHaveWrappedUnseen;
    if (raw >= *last_) {
        step = raw - *last_;
    } else if (range >= *last_) {
        step = range - *last_ + raw;
        comparable = comparable && static_cast<double>(step) / 1e6 <= mostCredibleWatts * seconds;
    } else {
        comparable = false;
    }
    last_ = raw;
    if (comparable)
        total_ += step;
    else
        ++epoch_;
    return total_;
}

std::vector<PowercapZone> listPowercapZones(const SystemRoot& root) {
    std::map<std::string, std::string> folders;
    collect(root.path("sys/class/powercap/"), 0, folders);
    std::vector<PowercapZone> zones;
    for (const auto& [id, folder] : folders) {
        const auto name = readAttribute(folder + "name");
        if (!name) continue;
        const auto range = readNumber(folder + "max_energy_range_uj").value_or(0);
        zones.push_back({id, *name, folder, static_cast<uint64_t>(std::max(range, 0LL))});
    }
    std::stable_sort(zones.begin(), zones.end(), [](const PowercapZone& a, const PowercapZone& b) {
        return driverOf(a.id) < driverOf(b.id);
    });

    std::vector<PowercapZone> unique;
    const auto repeats = [&](const PowercapZone& zone) {
        return std::any_of(unique.begin(), unique.end(), [&](const PowercapZone& other) {
            return other.name == zone.name && driverOf(other.id) != driverOf(zone.id) &&
                   parentOf(other.id).empty();
        });
    };
    const auto keeps = [&](std::string_view id) {
        return std::any_of(unique.begin(), unique.end(),
                           [&](const PowercapZone& other) { return other.id == id; });
    };
    for (auto& zone : zones) {
        const std::string_view parent = parentOf(zone.id);
        if (parent.empty() ? !repeats(zone) : keeps(parent)) unique.push_back(std::move(zone));
    }
    return unique;
}

Powercap::Powercap(const SystemRoot& root) {
    const auto zones = listPowercapZones(root);
    for (const PowercapZone& zone : zones) {
        if (zone.name == "dram") memories_.emplace_back(zone);
        if (!parentOf(zone.id).empty() || !isPackage(zone)) continue;
        Package& package = packages_.emplace_back(zone);
        for (const PowercapZone& part : zones)
            if (part.name == "uncore" && parentOf(part.id) == zone.id) package.graphics.emplace(part);
    }
}

bool Powercap::Counter::read(uint64_t nanoseconds) {
    const auto raw = readNumber(zone.folder + "energy_uj");
    if (!raw || *raw < 0) return false;
    energy.advance(static_cast<uint64_t>(*raw), zone.rangeMicrojoules,
                   static_cast<double>(nanoseconds - readAt) / 1e9);
    readAt = nanoseconds;
    return true;
}

bool Powercap::readable() const {
    return std::any_of(packages_.begin(), packages_.end(), [](const Package& package) {
        return readNumber(package.whole.zone.folder + "energy_uj").has_value();
    });
}

void Powercap::samplePackage(Package& package, uint64_t nanoseconds, EnergySample& out) {
    const auto idOf = [](const Counter& counter) {
        return counter.zone.id + '/' + std::to_string(counter.energy.epoch());
    };
    if (!package.whole.read(nanoseconds)) return;
    std::string id = idOf(package.whole);
    auto energy = static_cast<int64_t>(package.whole.energy.total());
    if (package.graphics) {
        if (package.graphics->read(nanoseconds))
            out.push_back({idOf(*package.graphics), "GPU", "uJ",
                           static_cast<int64_t>(package.graphics->energy.total())});
        energy -= static_cast<int64_t>(package.graphics->energy.total());
        id += '-' + idOf(*package.graphics);
    }
    // The two are read one after the other, so that their difference may seem to fall by a trifle.
    if (id == package.id) energy = std::max(package.processorEnergy, energy);
    package.id = std::move(id);
    package.processorEnergy = energy;
    out.push_back({package.id, "CPU Energy", "uJ", energy});
}

void Powercap::sample(uint64_t nanoseconds, EnergySample& out) {
    for (Package& package : packages_) samplePackage(package, nanoseconds, out);
    for (Counter& memory : memories_)
        if (memory.read(nanoseconds))
            out.push_back({memory.zone.id + '/' + std::to_string(memory.energy.epoch()), "DRAM", "uJ",
                           static_cast<int64_t>(memory.energy.total())});
}

} // namespace sysinfo::platform
