#include "monitor/SMCMeasurements.h"

#include <cmath>

namespace quarn {

namespace {

constexpr double mostWatts = 10'000;
constexpr double mostVolts = 1'000;
constexpr double mostAmperes = 1'000;
// Below what any sensor resolves: the noise of a converter with nothing behind it.
constexpr double leastLive = 0.0005;

std::vector<Sensor> shown(const std::vector<Sensor>& readings, double most, std::set<std::string>& verified) {
    std::vector<Sensor> result;
    for (const Sensor& reading : readings) {
        const double size = std::abs(reading.value);
        if (!(size <= most)) continue; // also what is not a number
        if (size >= leastLive) verified.insert(reading.name);
        const bool powerVouches = !reading.name.empty() && verified.contains('P' + reading.name.substr(1));
        if (powerVouches || verified.contains(reading.name)) result.push_back(reading);
    }
    return result;
}

} // namespace

SMCMeasurements::Electrical SMCMeasurements::electrical(const std::vector<Sensor>& power,
                                                        const std::vector<Sensor>& voltage,
                                                        const std::vector<Sensor>& current,
                                                        std::set<std::string> previouslyVerified) {
    Electrical result;
    result.verified = std::move(previouslyVerified);
    result.power = shown(power, mostWatts, result.verified);
    result.voltage = shown(voltage, mostVolts, result.verified);
    result.current = shown(current, mostAmperes, result.verified);
    return result;
}

} // namespace quarn
