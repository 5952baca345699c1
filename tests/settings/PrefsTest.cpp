#include "ui/settings/Prefs.h"

#include "settings/Support.h"
#include "ui/settings/SettingsText.h"

#include <cstdlib>

namespace {

using namespace quarn;
using namespace quarn::testing;
using Texts = std::vector<std::string>;

struct PrefsTest : SettingsTest {
    Prefs prefs{store};
};

/// Users rely on the keys and defaults of the fixture: what changes there is lost or changed for them.
TEST_F(PrefsTest, AFreshInstallationAnswersTheDefaultsInOrder) {
    SettingChanges all;
    for (const auto* setting : prefs.settings())
        all.push_back({std::string(setting->key()), setting->storedValue()});
    EXPECT_EQ(editedSettings("", all), fixture("settings/defaults.toml"));
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(PrefsTest, AWrongTypeReadsAsTheDefault) {
    folder.write(fixture("settings/wrong-types.toml"));
    for (const auto* setting : prefs.settings())
        if (setting->key() == prefs.backgroundInterval.key())
            EXPECT_EQ(setting->storedValue(), SettingValue(3.0)) << "a whole number is a number";
        else
            EXPECT_EQ(setting->storedValue(), setting->storedDefault()) << setting->key();
}

TEST_F(PrefsTest, MenuBarModulesAreBuiltFromTheMenuBarSettings) {
    const std::tuple<int64_t, Texts, Texts> cases[]{
        {0, {}, {}},
        {1, {}, {"cpu"}},
        {4, {"network", "cpu"}, {"temperature", "network", "cpu"}},
        {7, {"power", "power"}, {"power"}},
        {8, {"unknown", "gpu"}, {"gpu"}},
        {std::numeric_limits<int64_t>::min(), {}, {}}};
    for (const auto& [item, detailed, modules] : cases) {
        prefs.menuBarItem.set(item);
        prefs.menuBarDetailed.set(detailed);
        EXPECT_EQ(prefs.menuBarModules(), modules) << item;
    }
}

TEST_F(PrefsTest, TheHotkeyIsTheChosenOneOrNone) {
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
