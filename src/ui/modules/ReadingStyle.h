#pragma once

#include <string>

namespace quarn {

class Prefs;

/// How a person wants readings written.
struct ReadingStyle {
    bool fahrenheit = false;
    bool networkInBits = false;

    bool operator==(const ReadingStyle&) const = default;
};

/// What the settings say now.
ReadingStyle readingStyle(const Prefs& prefs);

/// "48 °C", "118 °F".
std::string temperatureText(double celsius, const ReadingStyle& style);
/// "1.20 MB/s", or in bits "9.60 Mb/s".
std::string networkRateText(double bytesPerSecond, const ReadingStyle& style);

} // namespace quarn
