#pragma once

#include "core/SMCConnection.h"
#include "core/SMCDecode.h"
#include "core/SMCProtocol.h"
#include "core/SystemRoot.h"

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace sysinfo {

/// What a controller tells of a key once.
struct SMCKeyInfo {
    uint32_t size = 0; ///< bytes of data
    uint32_t type = 0;
    uint8_t attributes = 0; ///< kept, not used
};

/// What one command gave.
struct SMCResponse {
    SMCParameters block;
    bool ok = false;
};

/// The machine's sensor controller: named keys that are enumerated, described and read. Elsewhere than on
/// Apple hardware the platform's sensors stand behind it, with the same keys, types and rules.
///
/// A key is enumerated once and keeps its place; a sensor that is plugged in later, or wakes later, is
/// appended. Any thread may call.
class SMC {
public:
    /// The sensors of the machine under `root`. Without any, every call reports nothing.
    explicit SMC(const SystemRoot& root);
    /// Over a given connection; null stands for a machine without one.
    explicit SMC(std::unique_ptr<SMCConnection> connection);

    /// The instance on this machine, made with the first call and kept until the program ends.
    static SMC& get();

    bool isConnected() const { return connection_ != nullptr; }

    /// One exchange; fails at once without a connection. `ok` only when the controller reported success.
    SMCResponse command(uint8_t selector, uint32_t key, uint32_t index, uint32_t size);

    /// The value of a key. Its size and type are asked for once.
    SMCReading read(uint32_t key);

    /// All keys, or those from position `first` on. What came since the last call is added.
    std::vector<uint32_t> keys(size_t first = 0);

    /// As in SMCConnection; nothing without a connection.
    void prepare(std::span<const uint32_t> keys);
    std::optional<SensorDescription> describe(uint32_t key) const;
    std::vector<SensorDescription> sensors() const;
    void settle(std::chrono::milliseconds patience);

private:
    std::optional<SMCKeyInfo> infoOf(uint32_t key);

    const std::unique_ptr<SMCConnection> connection_;
    std::mutex keysMutex_; ///< held while keys are enumerated
    std::vector<uint32_t> keys_;
    uint32_t enumerated_ = 0; ///< indices asked for so far
    std::unordered_map<uint32_t, SMCKeyInfo> keyInfo_;
    std::mutex mutex_; ///< guards keyInfo_; never held across a call
};

} // namespace sysinfo
