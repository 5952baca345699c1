#include "core/CleanText.h"
#include "core/FlatRecords.h"
#include "core/sc.h"

#include <cstring>

extern "C" int quarn_flat_interface_check(void);

namespace {

TEST(FlatInterface, WorksFromPlainC) {
    EXPECT_EQ(quarn_flat_interface_check(), 0) << "the check that failed";
}

TEST(FlatInterface, TextsAreCutAndTerminated) {
    char out[4];
    for (const auto& [text, expected] : {std::pair{"abcdef", "abc"}, {"ab", "ab"}, {"", ""}}) {
        std::memset(out, 'x', sizeof out);
        scutil::copyText(out, text);
        EXPECT_STREQ(out, expected);
        EXPECT_EQ(out[3], '\0');
    }
}

TEST(CleanText, KeepsWhatCanBeShown) {
    using namespace std::string_literals;
    for (const auto& [raw, clean] : std::vector<std::pair<std::string, std::string>>{
             {"LNV-45N1\xff\xfe\0\0"s, "LNV-45N1"},
             {" Grüße €\t"s, "Grüße €"},
             {"\xf0\x9f\x94\x8b 7"s, "\xf0\x9f\x94\x8b 7"},
             {"a\x1b[31mb\x7f"s, "a[31mb"},
             {"cut \xe2\x82"s, "cut"},
             {"\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80\xf5"s, ""}, // overlong, surrogate, too large
             {"\xc2\x85next"s, "next"},
             {"S4881\xef\xbf\xbd"s, "S4881"},
         })
        EXPECT_EQ(scutil::cleanText(raw), clean);
}

} // namespace
