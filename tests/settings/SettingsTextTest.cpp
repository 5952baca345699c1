#include "ui/settings/SettingsText.h"

#include <limits>

namespace {

using namespace quarn;
using Texts = std::vector<std::string>;

/// "a = 5", or "a" for its removal.
SettingChange changeTo(const char* text) {
    const auto values = parseSettings(text).values;
    if (values.empty()) return {text, {}};
    return {values.begin()->first, values.begin()->second};
}

TEST(SettingsText, EditsKeepWhatTheyDoNotConcern) {
    const char* const cases[][4] = {
        {"a first key", "", "a = true", "a = true\n"},
        {"comments beside and above", "# mine\na = 1 # why\nb=2\n", "a = 5", "# mine\na = 5 # why\nb=2\n"},
        {"no line feed at the end", "a = 1", "b = 0.92", "a = 1\nb = 0.92\n"},
        {"above the tables", "a = 1\n\n# panels\n[panel]\nx = 1\n", "b = 2.0",
         "a = 1\nb = 2.0\n\n# panels\n[panel]\nx = 1\n"},
        {"tables only", "[panel]\nx = 1\n", "b = 't'", "b = \"t\"\n[panel]\nx = 1\n"},
        {"the same name within a table", "[panel]\na = 1\n", "a = true", "a = true\n[panel]\na = 1\n"},
        {"an array over lines", "w = [\n 'a', # one\n 'b' ] # end\nz = 1\n", "w = ['c']",
         "w = [\"c\"] # end\nz = 1\n"},
        {"letters of several bytes", "\"ключ\" = 'é' # ü\n", "\"ключ\" = 'ß'", "\"ключ\" = \"ß\" # ü\n"},
        {"removal", "a = 1 # gone\nb = 2 # stays\n", "a", "b = 2 # stays\n"},
        {"removal of what is not there", "b = 2", "a", "b = 2"},
        {"dotted keys", "p.x = 1\n", "a = true", "a = true\np.x = 1\n"},
        {"the same value", "a   =  1\n", "a = 1", "a   =  1\n"},
        {"another kind of line end", "a = 1\r\nb = 2\r\n", "a = 3", "a = 3\r\nb = 2\r\n"},
    };
    for (const auto& [name, before, change, after] : cases)
        EXPECT_EQ(editedSettings(before, {changeTo(change)}), after) << name;
}

TEST(SettingsText, RewritesWhatCannotBeEditedInPlaceWithoutLosingAKey) {
    for (const std::string before :
         {"[a]\nx = 1\n[b]\ny = 1979-05-27\n", "a.x = 1\na.y = 2\nb.y = 1979-05-27\n",
          "\xef\xbb\xbf"
          "a = { x = 1 }\nb = { y = [[1979-05-27, nan], { \"z\\n\" = '\"\\' }] }\n"}) {
        for (const std::optional<SettingValue>& value : {std::optional<SettingValue>(7.5), {}}) {
            const auto after = editedSettings(before, {{"a", value}});
            ASSERT_TRUE(after) << before;
            SettingsValues expected{{"b", {}}};
            if (value) expected.emplace("a", *value);
            EXPECT_EQ(parseSettings(*after).values, expected) << *after;
            EXPECT_NE(after->find("1979-05-27"), std::string::npos) << *after;
        }
    }
}

TEST(SettingsText, EveryWrittenValueReadsBack) {
    const Texts none, hard{"a,b", "]", "# no comment", "'"};
    const SettingValue values[]{true,
                                std::numeric_limits<int64_t>::min(),
                                std::numeric_limits<int64_t>::max(),
                                0.1,
                                -0.0,
                                5e-324,
                                1e300,
                                std::numeric_limits<double>::infinity(),
                                "",
                                "\"quoted\\\" \t\n\x01\x7f ü",
                                std::string("nul\0inside", 10),
                                none,
                                hard};
    for (const auto& value : values) {
        const auto text = editedSettings("", {{"odd key.\n", value}});
        ASSERT_TRUE(text);
        EXPECT_EQ(parseSettings(*text).values, (SettingsValues{{"odd key.\n", value}})) << *text;
    }
}

TEST(SettingsText, RefusesWhatCannotBeWritten) {
    EXPECT_FALSE(editedSettings("", {{"a", "\xff"}}));
    EXPECT_FALSE(editedSettings("", {{"\xff", true}}));
    EXPECT_FALSE(editedSettings("", {{"a", SettingValue()}}));
    EXPECT_FALSE(editedSettings("a = \n", {{"b", true}}));
}

TEST(SettingsText, ErrorsNameTheLine) {
    const auto parsed = parseSettings("a = 1\nb = [\n");
    ASSERT_TRUE(parsed.error);
    EXPECT_EQ(parsed.error->substr(0, 5), "line ");
    EXPECT_TRUE(parsed.values.empty());
    EXPECT_EQ(parseSettings("a = 1\nb\n").error->substr(0, 7), "line 2:");
    for (const auto broken :
         {"\xc3\xa9 = 1\n", "a = \xc3\xa9\n", "[,a]\n", "[\xc3\xa9]\n", "\xff", "a = 1\na = 2\n"})
        EXPECT_TRUE(parseSettings(broken).error) << broken;
}

} // namespace
