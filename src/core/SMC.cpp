#include "core/SMC.h"

#include "core/platform.h"

namespace sysinfo {

SMC::SMC(const SystemRoot& root) : SMC(platform::openSensors(root)) {}

SMC::SMC(std::unique_ptr<SMCConnection> connection) : connection_(std::move(connection)) {
    keyInfo_.max_load_factor(1.0F);
}

SMC& SMC::get() {
    static SMC shared(SystemRoot::host());
    return shared;
}

SMCResponse SMC::command(uint8_t selector, uint32_t key, uint32_t index, uint32_t size) {
    SMCResponse response;
    if (!connection_) return response;
    SMCParameters in;
    in.key = key;
    in.command = selector;
    in.data32 = index;
    in.dataSize = size;
    response.ok = connection_->call(in, response.block) && response.block.result == 0;
    return response;
}

std::optional<SMCKeyInfo> SMC::infoOf(uint32_t key) {
    {
        const std::lock_guard lock(mutex_);
        const auto known = keyInfo_.find(key);
        if (known != keyInfo_.end()) return known->second;
    }
    const auto response = command(smcReadKeyInfo, key, 0, 0);
    if (!response.ok) return {};
    const SMCKeyInfo info{response.block.dataSize, response.block.dataType, response.block.dataAttributes};
    const std::lock_guard lock(mutex_);
    keyInfo_[key] = info;
    return info;
}

SMCReading SMC::read(uint32_t key) {
    const auto info = infoOf(key);
    if (!info || info->size < 1 || info->size > 32) return {};
    const auto response = command(smcReadBytes, key, 0, info->size);
    SMCReading reading{info->type, 0, false};
    reading.ok = response.ok && decodeSMCNumeric(info->type, info->size, response.block.bytes, reading.value);
    return reading;
}

std::vector<uint32_t> SMC::keys(size_t first) {
    const std::lock_guard lock(keysMutex_);
    const auto reading = read(smcKeyCount);
    const double largest = 1 << 20; // a controller has some hundreds of keys
    const auto count = reading.ok && reading.value >= 0 && reading.value <= largest
                           ? static_cast<uint32_t>(reading.value)
                           : enumerated_;
    for (; enumerated_ < count; ++enumerated_) {
        const auto response = command(smcReadIndex, 0, enumerated_, 0);
        if (response.ok) keys_.push_back(response.block.key);
    }
    if (first >= keys_.size()) return {};
    return {keys_.begin() + static_cast<std::ptrdiff_t>(first), keys_.end()};
}

void SMC::prepare(std::span<const uint32_t> keys) {
    if (connection_) connection_->prepare(keys);
}

std::optional<SensorDescription> SMC::describe(uint32_t key) const {
    return connection_ ? connection_->describe(key) : std::nullopt;
}

std::vector<SensorDescription> SMC::sensors() const {
    return connection_ ? connection_->sensors() : std::vector<SensorDescription>();
}

void SMC::settle(std::chrono::milliseconds patience) {
    if (connection_) connection_->settle(patience);
}

} // namespace sysinfo
