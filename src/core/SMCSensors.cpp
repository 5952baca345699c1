#include "core/SMCSensors.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace sysinfo {

namespace {

constexpr double maxFanSpeed = 15'000;

SCSensor record(uint32_t key, double value) {
    SCSensor sensor{};
    const auto text = smcText(key);
    std::copy(text.begin(), text.end(), sensor.name);
    sensor.value = value;
    return sensor;
}

bool isPlausible(char kind, double value) {
    return std::isfinite(value) && (kind != 'F' || (value >= 0 && value <= maxFanSpeed));
}

} // namespace

int SMCSensors::temps(SCSensor* out, int max) {
    if (!smc_.isConnected() || !out || max < 1) return 0;
    const auto cached =
        temperatures_.get(smc_, isTemperatureKey, [](uint32_t key, const SMCReading& reading) {
            return measurementKey('T', key, reading) && reading.value >= 5 && reading.value <= 125;
        });
    smc_.prepare(cached);
    int count = 0;
    for (const uint32_t key : cached) {
        const auto reading = smc_.read(key);
        if (!reading.ok || !(reading.value >= 0 && reading.value <= 130)) continue;
        out[count++] = record(key, reading.value);
        if (count == max) break;
    }
    return count;
}

std::vector<uint32_t> SMCSensors::keysOf(char kind) {
    const auto isOfKind = [kind](uint32_t key) { return smcCharacter(key, 0) == kind; };
    const auto measures = [kind](uint32_t key, const SMCReading& reading) {
        return measurementKey(kind, key, reading);
    };
    switch (kind) {
    case 'F': return fans_.get(smc_, isOfKind, measures);
    case 'I': return currents_.get(smc_, isOfKind, measures);
    case 'P': return power_.get(smc_, isOfKind, measures);
    case 'V': return voltages_.get(smc_, isOfKind, measures);
    default: break;
    }
    auto keys = smc_.keys();
    std::erase_if(keys, [&](uint32_t key) { return !isOfKind(key); });
    return keys;
}

int SMCSensors::keys(char kind, SCSensor* out, int max) {
    if (!smc_.isConnected()) return 0;
    const auto keys = keysOf(kind);
    if (!out || max < 1) return 0;
    smc_.prepare(keys);
    int count = 0;
    for (const uint32_t key : keys) {
        const auto reading = smc_.read(key);
        if (!reading.ok || !measurementKey(kind, key, reading) || !isPlausible(kind, reading.value)) continue;
        out[count++] = record(key, reading.value);
        if (count == max) break;
    }
    return count;
}

double SMCSensors::value(const char* key) {
    if (!key || ::strnlen(key, 5) != 4) return std::numeric_limits<double>::quiet_NaN();
    const auto reading = smc_.read(smcCode(std::string_view(key, 4)));
    return reading.ok ? reading.value : std::numeric_limits<double>::quiet_NaN();
}

} // namespace sysinfo
