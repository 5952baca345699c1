#include "HelperKit/WireRecords.h"

namespace {

using namespace quarn;

TEST(CommandResult, SaysTheFirstThingThatWentWrong) {
    struct Case {
        CommandResult result;
        std::optional<std::string> description;
    };
    for (const auto& c : {Case{{"out", "complaints", 0, false, {}, false}, std::nullopt},
                          Case{{"", "", -9, true, "no such file", true}, "no such file"},
                          Case{{"", "", -9, true, {}, true}, "Command timed out"},
                          Case{{"", "", 0, false, {}, true}, "Output limit exceeded"},
                          Case{{"", "", -9, false, {}, false}, "Exit code: -9"}}) {
        EXPECT_EQ(c.result.failureDescription(), c.description);
        EXPECT_EQ(c.result.succeeded(), !c.description);
    }
}

} // namespace
