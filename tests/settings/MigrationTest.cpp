#include "ui/settings/Migration.h"
#include "settings/Support.h"
#include "ui/settings/Prefs.h"
#include "ui/settings/SettingsText.h"

namespace {

using namespace quarn;
using namespace quarn::testing;
using MigrationTest = SettingsTest;

TEST_F(MigrationTest, OldKeysBecomeNewOnesOnce) {
    const char* const cases[][3] = {
        {"nothing to do", "fahrenheit = true\nunknown = 07:30:00", "fahrenheit = true\nunknown = 07:30:00"},
        {"unused keys of any kind", "history = 07:30:00\nwindowFrame = '0 0 1 1'", ""},
        {"language", "language = 'de'", "languageCode = 'de'"},
        {"system language", "language = 'system'", "languageCode = 'fr'"},
        {"chosen language stays", "language = 'de'\nlanguageCode = 'it'", "languageCode = 'it'"},
        {"span of a minute", "graphSpanSeconds = 60", "historyRange = 'oneMinute'"},
        {"span between", "graphSpanSeconds = 120.0", "historyRange = 'fiveMinutes'"},
        {"greatest span", "graphSpanSeconds = 86400", "historyRange = 'thirtyMinutes'"},
        {"no span", "graphSpanSeconds = 0", ""},
        {"span of the wrong type", "graphSpanSeconds = '60'", ""},
        {"refresh 1", "refresh = 1", "samplingProfile = 'diagnostic'"},
        {"refresh 1.5", "refresh = 1.5", "samplingProfile = 'normal'"},
        {"refresh 2.1", "refresh = 2.1", "samplingProfile = 'powerSaving'"},
        {"refresh that makes no sense", "refresh = -1.0", ""},
        {"chosen profile stays", "refresh = 1.0\nsamplingProfile = 'normal'", "samplingProfile = 'normal'"},
        {"theme", "theme = 'dark'", "appTheme = 'dark'"},
        {"theme of the wrong type", "theme = 1", ""},
        {"everything at once",
         "theme = 'dark'\nhistory = true\nrefresh = 5.0\nlanguage = 'de'\nkeepExited = 3",
         "appTheme = 'dark'\nsamplingProfile = 'powerSaving'\nlanguageCode = 'de'\nkeepExited = 3"},
    };
    for (const auto& [name, before, after] : cases) {
        auto values = parseSettings(before).values;
        const auto apply = [&] {
            const auto changes = migrateSettings({values, {}, "fr"});
            for (const auto& change : changes)
                if (change.value)
                    values[change.key] = *change.value;
                else
                    values.erase(change.key);
            return changes.size();
        };
        apply();
        EXPECT_EQ(values, parseSettings(after).values) << name;
        EXPECT_EQ(apply(), 0u) << name;
    }
}

TEST_F(MigrationTest, FormerFileIsTakenOverOnce) {
    const auto former = folder.path() / "former.toml";
    folder.write("former.toml", "keepExited = 30\nfahrenheit = true\nrefresh = 5\n[table]\nx = 1\n");
    folder.write("fahrenheit = false\n");
    {
        Prefs prefs(store, {former});
        EXPECT_EQ(prefs.keepExited.get(), 30);
        EXPECT_FALSE(prefs.fahrenheit.get()) << "what is chosen already stays";
        EXPECT_EQ(prefs.samplingProfile.get(), "powerSaving");
        prefs.keepExited.reset();
    }
    Prefs again(store, {former});
    EXPECT_EQ(again.keepExited.get(), 8);
    EXPECT_NE(folder.text("former.toml"), "") << "an older version may still be in use";
}

TEST_F(MigrationTest, TouchesTheFileOnlyWhenThereIsSomethingToDo) {
    Prefs fresh(store, {folder.path() / "former.toml"});
    EXPECT_TRUE(folder.names().empty());

    folder.write("keepExited=1");
    Prefs current(store);
    EXPECT_EQ(folder.text(), "keepExited=1");

    folder.write("# mine\ntheme = 'dark'\nkeepExited=1 # short\n");
    Prefs old(store);
    EXPECT_EQ(folder.text(), "# mine\nkeepExited=1 # short\nappTheme = \"dark\"\n");
}

TEST_F(MigrationTest, SystemLanguage) {
    const std::pair<std::string_view, std::string_view> cases[]{
        {"de_DE.UTF-8", "de"}, {"fil_PH", "fil"}, {"pt", "pt"}, {"sr@latin", "sr"}, {"C", "en"},
        {"C.UTF-8", "en"},     {"POSIX", "en"},   {"", "en"},   {"12_34", "en"},    {"_DE", "en"}};
    for (const auto& [locale, language] : cases) EXPECT_EQ(languageOfLocale(locale), language) << locale;
}

} // namespace
