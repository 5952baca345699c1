#include "core/linux/SensorTable.h"

#include <algorithm>
#include <tuple>

namespace sysinfo::platform {

namespace {

constexpr uint32_t systemPower = smcCode("PSTR");
constexpr uint32_t inputPower = smcCode("PDTR");

// The board's own chips first: where there are more fans than keys, those of extension cards go without.
int assignmentRank(SensorClass sensorClass) {
    switch (sensorClass) {
    case SensorClass::board: return 0;
    case SensorClass::cpu: return 1;
    case SensorClass::gpu: return 2;
    default: return 3;
    }
}

const SensorChannel& channelOf(const SensorTable::Target& target) {
    return target.chip->channels[target.channel];
}

bool isEnumerable(const SensorTable::Target& target) {
    return channelOf(target).isListedAtOnce || target.chip->hasAnswered(target.channel);
}

// A sensor that measures the whole machine is better than the platform's energy counter, and that than the
// batteries, which know only while they discharge.
int powerRank(const SensorTable::Target& target) {
    if (target.chip->identity.text == "power_supply") return 2;
    return target.chip->identity.name == "psys" ? 1 : 0;
}

} // namespace

// Several chips may be the same thing at the same place: the first keeps the plain name.
const std::string& SensorTable::uniqueName(const SensorChip& chip) {
    const auto known = names_.find(&chip);
    if (known != names_.end()) return known->second;
    const auto isTaken = [this](const std::string& name) {
        return std::any_of(names_.begin(), names_.end(),
                           [&](const auto& other) { return other.second == name; });
    };
    std::string name = chip.identity.text;
    for (int copy = 2; isTaken(name); ++copy) name = chip.identity.text + '#' + std::to_string(copy);
    return names_[&chip] = name;
}

void SensorTable::forget(const SensorChip& chip) {
    const std::lock_guard lock(mutex_);
    names_.erase(&chip);
}

void SensorTable::setChips(const std::vector<std::shared_ptr<SensorChip>>& chips) {
    const std::lock_guard lock(mutex_);
    chips_ = chips;
    for (const auto& chip : chips_) uniqueName(*chip);
    std::stable_sort(chips_.begin(), chips_.end(), [this](const auto& a, const auto& b) {
        const auto order = [this](const SensorChip& chip) {
            return std::make_tuple(assignmentRank(chip.identity.sensorClass), uniqueName(chip));
        };
        return order(*a) < order(*b);
    });
    std::vector<Target> named;
    std::vector<Target> others;
    std::vector<Target> system;
    std::vector<Target> input;
    for (const auto& chip : chips_) {
        for (size_t i = 0; i < chip->channels.size(); ++i) {
            const SensorChannel& channel = chip->channels[i];
            auto& list = channel.role == SensorChannel::Role::systemPower  ? system
                         : channel.role == SensorChannel::Role::inputPower ? input
                         : channel.namedKey != 0                           ? named
                                                                           : others;
            list.push_back({chip, i});
        }
    }
    // What the hardware itself named comes first, so that nothing else takes its key.
    for (const Target& target : named) assign(target);
    for (const Target& target : others) assign(target);
    assignShared(systemPower, std::move(system));
    assignShared(inputPower, std::move(input));
}

void SensorTable::assign(const Target& target) {
    const SensorChannel& channel = channelOf(target);
    const ChipIdentity& chip = target.chip->identity;
    const std::string& name = uniqueName(*target.chip);
    uint32_t key = channel.namedKey ? keys_.assignNamed(channel.namedKey, name, channel.number) : 0;
    if (key == 0) {
        key =
            keys_.assign(channel.kind, classOfSensor(chip.sensorClass, channel.label), name, channel.number);
    }
    if (key == 0) return;
    auto& targets = targets_[key];
    if (targets.empty()) assigned_.push_back(key);
    targets = {target};
}

void SensorTable::assignShared(uint32_t key, std::vector<Target> targets) {
    const auto known = targets_.find(key);
    const bool isOfController =
        known != targets_.end() && !known->second.empty() && channelOf(known->second.front()).namedKey != 0;
    if (isOfController || (targets.empty() && known == targets_.end())) return;
    if (known == targets_.end()) assigned_.push_back(key);
    std::stable_sort(targets.begin(), targets.end(),
                     [](const Target& a, const Target& b) { return powerRank(a) < powerRank(b); });
    targets_[key] = std::move(targets);
}

uint32_t SensorTable::publish() {
    const std::lock_guard lock(mutex_);
    for (const uint32_t key : assigned_) {
        if (isPublished_.contains(key)) continue;
        const auto& targets = targets_.at(key);
        if (std::none_of(targets.begin(), targets.end(), isEnumerable)) continue;
        isPublished_.insert(key);
        published_.push_back(key);
    }
    return static_cast<uint32_t>(published_.size());
}

uint32_t SensorTable::keyAt(uint32_t index) const {
    const std::lock_guard lock(mutex_);
    return index < published_.size() ? published_[index] : 0;
}

std::vector<SensorTable::Target> SensorTable::targets(uint32_t key) const {
    const std::lock_guard lock(mutex_);
    const auto found = targets_.find(key);
    return found == targets_.end() ? std::vector<Target>() : found->second;
}

std::vector<SensorTable::Target> SensorTable::silent() const {
    const std::lock_guard lock(mutex_);
    std::vector<Target> silent;
    if (published_.size() == assigned_.size()) return silent;
    for (const uint32_t key : assigned_) {
        for (const Target& target : targets_.at(key)) {
            if (!isEnumerable(target)) silent.push_back(target);
        }
    }
    return silent;
}

SensorDescription SensorTable::described(const Target& target, uint32_t key, uint64_t nowNs) const {
    const SensorChip& chip = *target.chip;
    const SensorChannel& channel = channelOf(target);
    SensorDescription description;
    description.key = key;
    description.number = channel.number;
    description.label = channel.label;
    const auto sameLabel =
        std::count_if(chip.channels.begin(), chip.channels.end(), [&](const SensorChannel& other) {
            return other.kind == channel.kind && other.label == channel.label;
        });
    if (sameLabel > 1 && !channel.label.empty()) description.label += ' ' + std::to_string(channel.number);

    const ChipIdentity& identity = chip.identity;
    const auto sameName = std::count_if(chips_.begin(), chips_.end(), [&](const auto& other) {
        return other->identity.display == identity.display;
    });
    description.chip = identity.display;
    if (sameName > 1) {
        description.chip = identity.device.starts_with(identity.display)
                               ? identity.device
                               : identity.display + ' ' + identity.device;
    }
    const SensorLimits limits = chip.limits(target.channel);
    description.max = limits.max;
    description.crit = limits.crit;
    description.state = chip.state(target.channel, nowNs);
    return description;
}

std::optional<SensorDescription> SensorTable::describeLocked(uint32_t key, uint64_t nowNs) const {
    const auto found = targets_.find(key);
    if (found == targets_.end() || found->second.empty()) return {};
    for (const Target& target : found->second) {
        if (target.chip->answer(target.channel, nowNs)) return described(target, key, nowNs);
    }
    return described(found->second.front(), key, nowNs);
}

std::optional<SensorDescription> SensorTable::describe(uint32_t key, uint64_t nowNs) const {
    const std::lock_guard lock(mutex_);
    return describeLocked(key, nowNs);
}

std::vector<SensorDescription> SensorTable::describeAll(uint64_t nowNs) const {
    const std::lock_guard lock(mutex_);
    std::vector<SensorDescription> all;
    for (const uint32_t key : assigned_) {
        auto description = describeLocked(key, nowNs);
        if (!description) continue;
        const bool isKeptAsleep =
            description->state == SensorState::asleep || description->state == SensorState::idle;
        if (isPublished_.contains(key) || isKeptAsleep) all.push_back(std::move(*description));
    }
    return all;
}

} // namespace sysinfo::platform
