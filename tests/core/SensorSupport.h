#pragma once

#include "core/SMCSensors.h"
#include "core/Support.h"
#include "core/linux/SensorConnection.h"
#include "core/linux/SensorIo.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>

/// Helpers of the sensor tests.
namespace quarn::testing {

using Readings = std::map<std::string, double>;

inline Readings asMap(const SCSensor* sensors, int count) {
    Readings map;
    for (int i = 0; i < count; ++i) map[sensors[i].name] = sensors[i].value;
    return map;
}

/// The sensors of a machine under a folder, with a clock that a test drives.
class SensorMachine {
public:
    using Write = decltype(sysinfo::platform::SensorIo::write);
    using Read = std::function<long(sysinfo::platform::KeptAttribute&, std::span<char>)>;
    /// Given each reading, and how to do it for real.
    using Hook = std::function<long(sysinfo::platform::KeptAttribute&, std::span<char>, const Read&)>;

    explicit SensorMachine(const sysinfo::SystemRoot& root, Hook hook = {}, Write write = {})
        : parts_(std::make_unique<Parts>(connect(root, std::move(hook), std::move(write)))) {}

    Readings of(char kind) {
        SCSensor out[512];
        return asMap(out, kind == 'T' ? sensors.temps(out, 512) : sensors.keys(kind, out, 512));
    }
    Readings temperatures() { return of('T'); }
    /// The same by "label (chip)".
    Readings named(const Readings& byKey) {
        Readings map;
        for (const auto& [key, value] : byKey) {
            const auto sensor = smc.describe(sysinfo::smcCode(key));
            map[sensor ? sensor->label + " (" + sensor->chip + ")" : key] = value;
        }
        return map;
    }
    void pass(double seconds) { *now += static_cast<uint64_t>(seconds * 1e9); }

    std::shared_ptr<std::atomic<uint64_t>> now = std::make_shared<std::atomic<uint64_t>>(1'000'000'000);

private:
    /// On the heap, where the thread sanitizer notices that a mutex ends.
    struct Parts {
        explicit Parts(std::unique_ptr<sysinfo::SMCConnection> connection)
            : smc(std::move(connection)), sensors(smc) {}
        sysinfo::SMC smc;
        sysinfo::SMCSensors sensors;
    };

    std::unique_ptr<sysinfo::SMCConnection> connect(const sysinfo::SystemRoot& root, Hook hook, Write write) {
        auto io = sysinfo::platform::SensorIo::forRoot(root);
        io.nowNs = [clock = now] { return clock->load(); };
        if (hook) io.read = [hook, real = io.read](auto& at, auto buffer) { return hook(at, buffer, real); };
        io.write = std::move(write);
        return std::make_unique<sysinfo::platform::SensorConnection>(root, std::move(io));
    }

    const std::unique_ptr<Parts> parts_;

public:
    sysinfo::SMC& smc = parts_->smc;
    sysinfo::SMCSensors& sensors = parts_->sensors;
};

} // namespace quarn::testing
