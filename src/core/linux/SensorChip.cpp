#include "core/linux/SensorChip.h"

#include <algorithm>
#include <cstring>

namespace sysinfo::platform {

namespace {

constexpr uint64_t second = 1'000'000'000;
constexpr uint64_t freshNs = second / 4;
constexpr int longestBackOff = 6; // 64 seconds

} // namespace

SensorChip::SensorChip(ChipIdentity chip, std::vector<SensorChannel> list, SensorGuard guard)
    : identity(std::move(chip)),
      channels(std::move(list)),
      standing_(channels.size()),
      guard_(std::move(guard)),
      keptNs_(guard_.keptNs()) {}

void SensorChip::refresh(const SensorIo& io, std::span<const size_t> wanted) {
    if (retired_) return;
    const SensorState admission = guard_.admission(io);
    {
        const std::lock_guard lock(mutex_);
        admission_ = admission;
        if (admission != SensorState::answering) refusedNs_ = io.nowNs();
    }
    if (admission != SensorState::answering) return;
    read(io, wanted);
    guard_.readingEnded(io);
}

bool SensorChip::isDue(size_t channel, uint64_t nowNs) const {
    const std::lock_guard lock(mutex_);
    const Standing& standing = standing_[channel];
    const uint64_t asked = std::max(standing.answer.takenNs, refusedNs_);
    return !retired_ && nowNs >= standing.retryNs && (asked == 0 || nowNs >= asked + freshNs);
}

std::optional<SensorAnswer> SensorChip::answer(size_t channel, uint64_t nowNs) const {
    const std::lock_guard lock(mutex_);
    const SensorAnswer& last = standing_[channel].answer;
    if (retired_ || !last.ok || admission_ == SensorState::asleep) return {};
    return nowNs < last.takenNs + keptNs_ ? std::optional(last) : std::nullopt;
}

SensorState SensorChip::state(size_t channel, uint64_t nowNs) const {
    if (retired_) return SensorState::gone;
    if (answer(channel, nowNs)) return SensorState::answering;
    const std::lock_guard lock(mutex_);
    if (admission_ == SensorState::asleep || admission_ == SensorState::idle) return admission_;
    return standing_[channel].failures > 0 ? SensorState::failing : SensorState::waiting;
}

SensorLimits SensorChip::limits(size_t channel) const {
    const std::lock_guard lock(mutex_);
    return standing_[channel].limits;
}

bool SensorChip::hasAnswered(size_t channel) const {
    const std::lock_guard lock(mutex_);
    return standing_[channel].everAnswered;
}

uint64_t SensorChip::deadlineNs(const SensorIo& io, size_t) const { return io.deadlineNs; }

SensorLimits SensorChip::readLimits(const SensorIo&, size_t) { return {}; }

bool SensorChip::mayTry(size_t channel, uint64_t nowNs) const {
    const std::lock_guard lock(mutex_);
    return nowNs >= standing_[channel].retryNs;
}

void SensorChip::reportValue(const SensorIo& io, size_t channel, std::optional<double> value) {
    if (!value) return reportFailure(io, channel);
    const auto narrow = static_cast<float>(*value);
    std::array<uint8_t, sizeof narrow> bytes;
    std::memcpy(bytes.data(), &narrow, sizeof narrow);
    reportBytes(io, channel, bytes);
}

void SensorChip::reportBytes(const SensorIo& io, size_t channel, std::span<const uint8_t> bytes) {
    SensorAnswer answer{true, io.nowNs(), {}};
    std::copy_n(bytes.begin(), std::min(bytes.size(), answer.bytes.size()), answer.bytes.begin());
    const bool isFirst = !hasAnswered(channel);
    report(channel, answer, 0);
    if (!isFirst) return;
    const SensorLimits limits = readLimits(io, channel);
    const std::lock_guard lock(mutex_);
    standing_[channel].limits = limits;
}

void SensorChip::reportFailure(const SensorIo& io, size_t channel) {
    int failures = 0;
    {
        const std::lock_guard lock(mutex_);
        failures = standing_[channel].failures;
    }
    report(channel, {false, io.nowNs(), {}}, second << std::min(failures, longestBackOff));
}

void SensorChip::reportNothing(const SensorIo& io, size_t channel) {
    report(channel, {false, io.nowNs(), {}}, 0);
}

void SensorChip::report(size_t channel, const SensorAnswer& answer, uint64_t pauseNs) {
    const std::lock_guard lock(mutex_);
    Standing& standing = standing_[channel];
    standing.answer = answer;
    standing.retryNs = pauseNs > 0 ? answer.takenNs + pauseNs : 0;
    standing.failures = pauseNs > 0 ? standing.failures + 1 : 0;
    standing.everAnswered = standing.everAnswered || answer.ok;
}

} // namespace sysinfo::platform
