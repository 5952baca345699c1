#include "ui/settings/Prefs.h"

#include "settings/Support.h"
#include "ui/settings/SettingsText.h"

#include <cstdlib>

namespace {

using namespace quarn;
using namespace quarn::testing;
using Texts = std::vector<std::string>;

/// What users rely on: a change of this table changes what they see.
constexpr std::string_view defaults = R"(
fahrenheit = false
networkInBits = false
appCPUWholeMac = false
menuBarItem = 0
keepExited = 8
alwaysAdmin = false
languageCode = "en"
alertsEnabled = true
alertNotifications = true
alertSound = false
alertTempC = 95
alertCPUPercent = 85
alertSwapGB = 8
alertFreeSpacePercent = 10
alertBatteryPercent = 15
alertProcessCPU = 0
historyRange = "oneMinute"
topAppsRange = "day"
crossfadeValues = false
flashChanges = true
showExited = true
startPage = 0
sidebarLayout = ""
menuBarDetailed = []
menuBarSpanSeconds = 60.0
menuBarStyle = 2
widgets = []
widgetOpacity = 0.92
widgetsOnTop = true
hotkeyEnabled = true
hotkeyCombo = 0
keepRunning = true
showInDock = true
openWindowAtLaunch = true
backgroundInterval = 1.0
saveMetricsHistory = true
autoUpdateCheck = true
lastUpdateCheck = 0.0
skippedUpdate = ""
rememberPage = true
samplingProfile = "normal"
)";

TEST(Prefs, AFreshInstallationAnswersTheDefaultsInOrder) {
    SettingsFolder folder;
    WatchfulStore store(folder);
    const Prefs prefs(store);
    SettingChanges all;
    for (const auto* setting : prefs.settings())
        all.push_back({std::string(setting->key()), setting->storedValue()});
    EXPECT_EQ(editedSettings("\n", all), defaults);
    EXPECT_TRUE(folder.names().empty());
}

TEST(Prefs, AWrongTypeReadsAsTheDefault) {
    SettingsFolder folder;
    folder.write(R"(
keepExited = "12"
alertTempC = 80.0
fahrenheit = 1
backgroundInterval = 3
widgetOpacity = "0.5"
languageCode = true
historyRange = "fortnight"
topAppsRange = 2
sidebarLayout = "cpu,,memory"
widgets = ["cpu", 1]
menuBarDetailed = "cpu"
)");
    WatchfulStore store(folder);
    const Prefs prefs(store);
    EXPECT_EQ(prefs.keepExited.get(), 8);
    EXPECT_EQ(prefs.alertTempC.get(), 95);
    EXPECT_FALSE(prefs.fahrenheit.get());
    EXPECT_EQ(prefs.backgroundInterval.get(), 3.0) << "a whole number is a number";
    EXPECT_EQ(prefs.widgetOpacity.get(), 0.92);
    EXPECT_EQ(prefs.languageCode.get(), "en");
    EXPECT_EQ(prefs.historyRange.get(), HistoryRange::oneMinute);
    EXPECT_EQ(prefs.topAppsRange.get(), TopAppsRange::day);
    EXPECT_EQ(prefs.sidebarLayout.get(), SidebarLayout());
    EXPECT_EQ(prefs.widgets.get(), Texts{});
    EXPECT_EQ(prefs.menuBarDetailed.get(), Texts{});
}

TEST(Prefs, MenuBarModulesAreBuiltFromTheMenuBarSettings) {
    struct Case {
        int64_t item;
        Texts detailed, modules;
    };
    const Case cases[]{{0, {}, {}},
                       {1, {}, {"cpu"}},
                       {4, {"network", "cpu"}, {"temperature", "network", "cpu"}},
                       {7, {"power", "power"}, {"power"}},
                       {8, {"unknown", "gpu"}, {"gpu"}},
                       {std::numeric_limits<int64_t>::min(), {}, {}}};
    SettingsFolder folder;
    WatchfulStore store(folder);
    Prefs prefs(store);
    for (const auto& c : cases) {
        prefs.menuBarItem.set(c.item);
        prefs.menuBarDetailed.set(c.detailed);
        EXPECT_EQ(prefs.menuBarModules(), c.modules) << c.item;
    }
}

TEST(Prefs, TheHotkeyIsTheChosenOneOrNone) {
    SettingsFolder folder;
    WatchfulStore store(folder);
    Prefs prefs(store);
    EXPECT_EQ(prefs.hotkey(), hotkeyChoices()[0].shortcut);
    prefs.hotkeyCombo.set(3);
    EXPECT_EQ(prefs.hotkey(), hotkeyChoices()[3].shortcut);
    for (const int64_t none : {int64_t{-1}, static_cast<int64_t>(hotkeyChoices().size())}) {
        prefs.hotkeyCombo.set(none);
        EXPECT_EQ(prefs.hotkey(), std::nullopt) << none;
    }
    prefs.hotkeyCombo.reset();
    prefs.hotkeyEnabled.set(false);
    EXPECT_EQ(prefs.hotkey(), std::nullopt);
}

TEST(SidebarLayout, ItsTextReadsBackOrNotAtAll) {
    const std::pair<std::string_view, std::optional<SidebarLayout>> cases[]{
        {"", SidebarLayout()},
        {"cpu,memory", SidebarLayout{{"cpu", "memory"}, {}}},
        {";gpu,cpu", SidebarLayout{{}, {"cpu", "gpu"}}},
        {"b,a;c-1", SidebarLayout{{"b", "a"}, {"c-1"}}},
        {"a,a", SidebarLayout{{"a"}, {}}},
        {",", std::nullopt},
        {"a,", std::nullopt},
        {"a b", std::nullopt},
        {"a;b;c", std::nullopt}};
    for (const auto& [text, layout] : cases) {
        EXPECT_EQ(SidebarLayout::decoded(text), layout) << text;
        if (!layout) continue;
        EXPECT_EQ(SidebarLayout::decoded(layout->encoded()), layout) << text;
    }
}

TEST(SettingsPath, FollowsTheEnvironment) {
    const auto in = [](const char* config, const char* home) {
        config ? ::setenv("XDG_CONFIG_HOME", config, 1) : ::unsetenv("XDG_CONFIG_HOME");
        ::setenv("HOME", home, 1);
        return settingsFileIn("quarn");
    };
    EXPECT_EQ(in("/config", "/home/u"), "/config/quarn/settings.toml");
    EXPECT_EQ(in(nullptr, "/home/u"), "/home/u/.config/quarn/settings.toml");
    EXPECT_EQ(in("", "/home/u"), "/home/u/.config/quarn/settings.toml");
    EXPECT_EQ(in("relative", "/home/u"), "/home/u/.config/quarn/settings.toml");
    EXPECT_EQ(in(nullptr, "relative"), "");
}

} // namespace
