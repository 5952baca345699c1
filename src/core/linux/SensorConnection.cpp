#include "core/linux/SensorConnection.h"

#include "core/linux/Files.h"
#include "core/platform.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr uint64_t lookOverEveryNs = 10'000'000'000;

void writeBigEndian(uint32_t value, uint8_t* out) {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

} // namespace

std::unique_ptr<SMCConnection> openSensors(const SystemRoot& root) {
    if (!exists(root.path("sys/class"))) return nullptr;
    return std::make_unique<SensorConnection>(root, SensorIo::forRoot(root));
}

SensorConnection::SensorConnection(const SystemRoot& root, SensorIo io)
    : io_(std::make_shared<const SensorIo>(std::move(io))), sources_(root), lanes_(io_) {}

bool SensorConnection::call(const SMCParameters& in, SMCParameters& out) {
    out = {};
    out.key = in.key;
    bool isKnown = false;
    switch (in.command) {
    case smcReadIndex:
        out.key = table_.keyAt(in.data32);
        isKnown = out.key != 0;
        break;
    case smcReadKeyInfo: isKnown = describeData(in.key, out); break;
    case smcReadBytes: isKnown = readBytes(in.key, out); break;
    default: break;
    }
    if (!isKnown) out.result = smcKeyNotFound;
    return true;
}

std::vector<SensorTable::Target> SensorConnection::targetsOf(uint32_t key) {
    auto targets = table_.targets(key);
    if (!targets.empty()) return targets;
    {
        const std::lock_guard lock(sweepMutex_);
        lookOverWhenDue();
    }
    return table_.targets(key);
}

bool SensorConnection::describeData(uint32_t key, SMCParameters& out) {
    if (key == smcKeyCount) {
        out.dataSize = 4;
        out.dataType = smcCode("ui32");
        return true;
    }
    const auto targets = targetsOf(key);
    if (targets.empty()) return false;
    const SensorChannel& channel = targets.front().chip->channels[targets.front().channel];
    out.dataSize = channel.size;
    out.dataType = channel.type;
    return true;
}

bool SensorConnection::readBytes(uint32_t key, SMCParameters& out) {
    if (key == smcKeyCount) {
        writeBigEndian(updatedKeyCount(), out.bytes);
        return true;
    }
    for (const Target& target : targetsOf(key)) {
        if (target.chip->isDue(target.channel, io_->nowNs())) {
            const std::lock_guard lock(sweepMutex_);
            lookOverWhenDue();
            refreshDue({&target, 1});
        }
        const auto answer = target.chip->answer(target.channel, io_->nowNs());
        if (!answer) continue;
        std::copy(answer->bytes.begin(), answer->bytes.end(), out.bytes);
        return true;
    }
    return false;
}

void SensorConnection::prepare(std::span<const uint32_t> keys) {
    std::vector<Target> wanted;
    for (const uint32_t key : keys) {
        const auto targets = table_.targets(key);
        if (!targets.empty()) wanted.push_back(targets.front());
    }
    const std::lock_guard lock(sweepMutex_);
    refreshDue(wanted);
}

void SensorConnection::refreshDue(std::span<const Target> targets) {
    const uint64_t now = io_->nowNs();
    std::vector<SensorLanes::Job> jobs;
    for (const Target& target : targets) {
        if (!target.chip->isDue(target.channel, now)) continue;
        auto job =
            std::find_if(jobs.begin(), jobs.end(), [&](const auto& one) { return one.chip == target.chip; });
        if (job == jobs.end()) job = jobs.insert(jobs.end(), {target.chip, {}});
        job->wanted.push_back(target.channel);
    }
    if (!jobs.empty()) lanes_.refresh(std::move(jobs));
}

uint32_t SensorConnection::updatedKeyCount() {
    const std::lock_guard lock(sweepMutex_);
    lookOverWhenDue();
    refreshDue(table_.silent());
    return table_.publish();
}

void SensorConnection::lookOverWhenDue() {
    const uint64_t now = io_->nowNs();
    if (lookedOver_ && now - lookedOverNs_ < lookOverEveryNs) return;
    lookedOver_ = true;
    lookedOverNs_ = now;
    if (!sources_.lookOver(*io_)) return;
    for (const auto& chip : sources_.lost()) {
        chip->retire();
        lanes_.forget(*chip);
        table_.forget(*chip);
    }
    table_.setChips(sources_.chips());
}

std::optional<SensorDescription> SensorConnection::describe(uint32_t key) {
    return table_.describe(key, io_->nowNs());
}

std::vector<SensorDescription> SensorConnection::sensors() { return table_.describeAll(io_->nowNs()); }

void SensorConnection::settle(std::chrono::milliseconds patience) {
    const std::lock_guard lock(sweepMutex_);
    lanes_.settle(patience);
}

} // namespace sysinfo::platform
