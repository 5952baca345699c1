#include "HelperKit/WireRecords.h"

namespace {

using namespace quarn;

TEST(CommandResult, SaysTheFirstThingThatWentWrong) {
    const std::pair<CommandResult, std::optional<std::string>> cases[]{
        {{"out", "complaints", 0, false, {}, false}, std::nullopt},
        {{"", "", -9, true, "no such file", true}, "no such file"},
        {{"", "", -9, true, {}, true}, "Command timed out"},
        {{"", "", 0, false, {}, true}, "Output limit exceeded"},
        {{"", "", -9, false, {}, false}, "Exit code: -9"}};
    for (const auto& [result, description] : cases) {
        EXPECT_EQ(result.failureDescription(), description);
        EXPECT_EQ(result.succeeded(), !description);
    }
}

} // namespace
