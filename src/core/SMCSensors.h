#pragma once

#include "core/SMC.h"
#include "core/sc.h"

#include <mutex>
#include <vector>

namespace sysinfo {

/// The keys that pass a filter. Every key is read and judged once, when it is first seen: one that was not
/// worth reporting then is never read again, which drops dead and placeholder sensors for good.
class KeyCache {
public:
    /// The keys of `smc` for which `mayPass(key)` holds and whose reading was ok and passed
    /// `passes(key, reading)`.
    template <class MayPass, class Passes>
    std::vector<uint32_t> get(SMC& smc, MayPass mayPass, Passes passes) {
        const std::lock_guard lock(mutex_);
        std::vector<uint32_t> candidates = smc.keys(judged_);
        judged_ += candidates.size();
        std::erase_if(candidates, [&](uint32_t key) { return !mayPass(key); });
        if (!candidates.empty()) smc.prepare(candidates);
        for (const uint32_t key : candidates) {
            const SMCReading reading = smc.read(key);
            if (reading.ok && passes(key, reading)) keys_.push_back(key);
        }
        return keys_;
    }

private:
    std::mutex mutex_;
    size_t judged_ = 0;
    std::vector<uint32_t> keys_;
};

/// The readings of a controller's sensors that are plausible, by kind. Any thread may call.
class SMCSensors {
public:
    /// `smc` must outlive this.
    explicit SMCSensors(SMC& smc) : smc_(smc) {}

    /// The temperatures in degrees Celsius, at most `max`; the count written. Only sensors that read 5 to
    /// 125 when first seen are listed, and of these the values from 0 to 130.
    int temps(SCSensor* out, int max);

    /// The measurements of one kind: 'F' fan speeds in revolutions per minute (0 to 15,000), 'V' volts, 'I'
    /// amperes, 'P' watts, and any other first character of keys. The count written.
    int keys(char kind, SCSensor* out, int max);

    /// The value of one key, NaN when it has none or `key` is not four characters.
    double value(const char* key);

private:
    std::vector<uint32_t> keysOf(char kind);

    SMC& smc_;
    KeyCache temperatures_;
    KeyCache fans_;
    KeyCache currents_;
    KeyCache power_;
    KeyCache voltages_;
};

} // namespace sysinfo
