#include "ui/modules/Format.h"

#include <cmath>
#include <limits>

namespace quarn::format {
namespace {

struct Case {
    std::string text;
    std::string_view expected;
};

TEST(Format, ReadingsHaveThreeDigitsAndTheirUnit) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const std::vector<Case> cases{
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
    };
    for (const Case& c : cases) EXPECT_EQ(c.text, c.expected);
}

} // namespace
} // namespace quarn::format
