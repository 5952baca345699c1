#include "core/linux/SensorSupply.h"

#include "core/linux/Files.h"

#include <cmath>

namespace sysinfo::platform {

namespace {

SensorChannel powerChannel(std::string label, int number, SensorChannel::Role role) {
    SensorChannel channel;
    channel.kind = SensorKind::power;
    channel.number = number;
    channel.label = std::move(label);
    channel.role = role;
    return channel;
}

// Some drivers tell the power, some voltage and current with a power of 0, and the sign means nothing.
std::optional<double> wattsOf(const PowerSupply& supply) {
    if (supply.powerNow && *supply.powerNow != 0) {
        return std::abs(static_cast<double>(*supply.powerNow)) * 1e-6;
    }
    if (!supply.voltageNow || !supply.currentNow) return {};
    return std::abs(static_cast<double>(*supply.voltageNow) * static_cast<double>(*supply.currentNow)) *
           1e-12;
}

class SupplyChip final : public SensorChip {
public:
    SupplyChip(const SystemRoot& root, ChipIdentity chip)
        : SensorChip(std::move(chip),
                     {powerChannel("battery discharge", 0, SensorChannel::Role::systemPower),
                      powerChannel("power adapter", 1, SensorChannel::Role::inputPower)},
                     SensorGuard()),
          root_(root) {}

private:
    void read(const SensorIo& io, std::span<const size_t>) override {
        const auto supplies = readPowerSupplies(root_);
        const std::optional<double> values[] = {batteryDraw(supplies), adapterInput(supplies)};
        for (size_t i = 0; i < std::size(values); ++i) {
            values[i] ? reportValue(io, i, values[i]) : reportNothing(io, i);
        }
    }

    const SystemRoot root_;
};

class PlatformEnergy final : public SensorChip {
public:
    explicit PlatformEnergy(const std::string& zone)
        : SensorChip({"powercap|psys", "psys", "psys", "psys", SensorClass::powerSupply},
                     {powerChannel("platform energy", 0, SensorChannel::Role::systemPower)}, SensorGuard()),
          energy_{zone + "/energy_uj", {}},
          range_(readNumber(zone + "/max_energy_range_uj").value_or(0)) {}

private:
    void read(const SensorIo& io, std::span<const size_t>) override {
        const auto counter = readInteger(io, energy_);
        if (!counter) {
            before_.reset();
            return reportFailure(io, 0);
        }
        const uint64_t now = io.nowNs();
        const auto before = std::exchange(before_, counter);
        const uint64_t elapsedNs = now - std::exchange(beforeNs_, now);
        const auto joules = before ? countedJoules(*before, *counter, range_) : std::nullopt;
        if (!joules || elapsedNs == 0) return reportNothing(io, 0);
        reportValue(io, 0, *joules / (static_cast<double>(elapsedNs) * 1e-9));
    }

    KeptAttribute energy_;
    long long range_;
    std::optional<long long> before_;
    uint64_t beforeNs_ = 0;
};

} // namespace

std::optional<double> batteryDraw(std::span<const PowerSupply> supplies) {
    double sum = 0;
    for (const PowerSupply& supply : supplies) {
        if (supply.peripheral) continue;
        if (supply.kind == PowerSupply::Kind::external && supply.online.value_or(false)) return {};
        const bool delivers =
            supply.kind == PowerSupply::Kind::battery && supply.status == PowerSupply::Status::discharging;
        if (delivers) sum += wattsOf(supply).value_or(0);
    }
    return sum > 0 ? std::optional(sum) : std::nullopt;
}

std::optional<double> adapterInput(std::span<const PowerSupply> supplies) {
    double sum = 0;
    for (const PowerSupply& supply : supplies) {
        const bool delivers =
            supply.kind == PowerSupply::Kind::external && !supply.peripheral && supply.online.value_or(false);
        if (delivers) sum += wattsOf(supply).value_or(0);
    }
    return sum > 0 ? std::optional(sum) : std::nullopt;
}

std::optional<double> countedJoules(long long before, long long now, long long range) {
    if (before < 0 || now < 0) return {};
    if (now >= before) return static_cast<double>(now - before) * 1e-6;
    if (range < before) return {};
    return (static_cast<double>(range - before) + static_cast<double>(now)) * 1e-6;
}

std::shared_ptr<SensorChip> openSupplies(const SystemRoot& root) {
    if (listFolder(root.path("sys/class/power_supply")).empty()) return nullptr;
    ChipIdentity chip{"power_supply", "power_supply", "power supply", "power_supply", SensorClass::battery};
    return std::make_shared<SupplyChip>(root, std::move(chip));
}

std::shared_ptr<SensorChip> openPlatformEnergy(const SystemRoot& root) {
    const std::string folder = root.path("sys/class/powercap");
    for (const std::string& zone : listFolder(folder)) {
        const std::string path = folder + '/' + zone;
        if (readAttribute(path + "/name") == "psys") return std::make_shared<PlatformEnergy>(path);
    }
    return nullptr;
}

} // namespace sysinfo::platform
