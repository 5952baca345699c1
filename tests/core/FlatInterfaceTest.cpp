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

} // namespace
