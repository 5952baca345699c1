#include "ui/modules/Wording.h"

#include <gtest/gtest.h>
#include <vector>

namespace quarn {
namespace {

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
