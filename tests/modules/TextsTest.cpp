// How readings, times and sentences are written.
#include "ui/modules/ChartText.h"
#include "ui/modules/Format.h"
#include "ui/modules/Wording.h"

#include <cmath>
#include <limits>

namespace quarn {
namespace {

TEST(Format, ReadingsHaveThreeDigitsAndTheirUnit) {
    using namespace format;
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const std::vector<std::pair<std::string, std::string_view>> cases{
        {memory(0), "0 B"},
        {memory(999), "999 B"},
        {memory(1000), "0.98 KiB"}, // never a fourth digit
        {memory(1024), "1.00 KiB"},
        {memory(3446711910), "3.21 GiB"},
        {memory(10237 * 1024), "10.0 MiB"}, // rounds up into the next number of digits
        {memory(UINT64_MAX), "16.0 EiB"},
        {diskSize(512110190592), "512 GB"},
        {rate(0), "0 B/s"},
        {rate(0.4), "0 B/s"},
        {rate(1200000), "1.20 MB/s"},
        {rate(999499), "999 kB/s"},
        {rate(999500), "1.00 MB/s"},
        {rate(std::nan("")), "—"},
        {rate(-1), "—"},
        {rate(infinite), "—"},
        {percent(0), "0.0 %"},
        {percent(23.44), "23.4 %"},
        {percent(99.96), "100 %"},
        {percent(1234), "1234 %"},
        {percent(-1), "—"},
        {perSecond(87), "87/s"},
        {perSecond(12340), "12.3 k/s"},
        {perSecond(-1), "—"},
        {watts(12.44), "12.4 W"},
        {duration(0), "0 s"},
        {duration(0.42), "0.42 s"},
        {duration(12.34), "12.3 s"},
        {duration(59.97), "1 min 0 s"}, // never "60.0 s"
        {duration(312), "5 min 12 s"},
        {duration(3599.7), "1 h 0 min"},
        {duration(273600), "3 d 4 h"},
        {duration(infinite), "—"},
        {shortDuration(14700), "4h 5m"},
        {shortDuration(8640000), "100d 0h"},
        // How long ago, along a chart.
        {agoText(0), "now"},
        {agoText(60), "−60 s"},
        {agoText(59.7), "−60 s"},
        {agoText(300), "−5 min"},
        {agoText(252.2), "−4 min 12 s"},
        {agoText(1800), "−30 min"},
        // A reading as the mark of a scale.
        {scaleMark("75.0 %"), "75 %"},
        {scaleMark("2.50 MB/s"), "2.5 MB/s"},
        {scaleMark("500 kB/s"), "500 kB/s"}, // zeros that count
        {scaleMark("100"), "100"},
        {scaleMark("—"), "—"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(text, expected);
}

TEST(Wording, SpeaksOfThisPlatform) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases{
        {"", ""},
        {"Swap and 3 – 4 °C stay as they are.", "Swap and 3 – 4 °C stay as they are."},
        {"Your Mac is running smoothly", "Your computer is running smoothly"},
        {"every core of the Mac fully utilized.", "every core of the computer fully utilized."},
        {"Mac", "Computer"},
        {"Macs sleep. Mac or not?", "Computers sleep. Computer or not?"},
        {"iMac, MacBook, Mac mini, Mac Studio", "iMac, MacBook, Mac mini, Mac Studio"}, // names of models
        {"macOS reports state: %@.", "The system reports state: %@."},
        {"appears as a macOS notification", "appears as a desktop notification"},
        {"the Dock icon shows only then", "the taskbar icon shows only then"},
        {"Docker, Docks", "Docker, Docks"},
        {"in the menu bar", "in the tray"},
        {"What a menu-bar module shows", "What a tray item shows"},
        {"Show in Finder", "Show in file manager"},
    };
    for (const auto& [original, here] : cases) EXPECT_EQ(worded(original), here);
}

} // namespace
} // namespace quarn
