#include "ui/modules/ReadingStyle.h"

#include "ui/modules/Format.h"
#include "ui/settings/Prefs.h"

#include <cmath>
#include <fmt/format.h>

namespace quarn {

ReadingStyle readingStyle(const Prefs& prefs) { return {prefs.fahrenheit.get(), prefs.networkInBits.get()}; }

std::string temperatureText(double celsius, const ReadingStyle& style) {
    if (!std::isfinite(celsius)) return std::string(format::unknown);
    return style.fahrenheit ? fmt::format("{:.0f} °F", celsius * 9 / 5 + 32)
                            : fmt::format("{:.0f} °C", celsius);
}

std::string networkRateText(double bytesPerSecond, const ReadingStyle& style) {
    if (!style.networkInBits) return format::rate(bytesPerSecond);
    std::string text = format::rate(bytesPerSecond * 8); // "1.20 MB/s" → "1.20 Mb/s"
    if (const auto unit = text.find('B'); unit != std::string::npos) text.replace(unit, 1, "b");
    return text;
}

} // namespace quarn
