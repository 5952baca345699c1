#include "cli/SettingsCommand.h"

#include "settings/Support.h"
#include "ui/settings/Prefs.h"

#include <sstream>

namespace {

using namespace quarn;
using namespace quarn::testing;

struct Answer {
    int status;
    std::string out, err;
};

struct SettingsCommand : SettingsTest {
    Prefs prefs{store};

    Answer run(const std::vector<std::string>& arguments) {
        std::ostringstream out, err;
        const int status = runSettings(arguments, prefs, out, err);
        return {status, out.str(), err.str()};
    }
};

TEST_F(SettingsCommand, StoresWhatTheSettingTakes) {
    const std::pair<std::string, std::string> cases[]{
        {"alertsEnabled", "false"},         {"keepExited", "30"},    {"backgroundInterval", "2.5"},
        {"menuBarSpanSeconds", "90"},       {"languageCode", "de"},  {"historyRange", "fiveMinutes"},
        {"samplingProfile", "powerSaving"}, {"widgets", "cpu,disk"}, {"menuBarDetailed", ""},
        {"sidebarLayout", "cpu;disks"}};
    for (const auto& [key, text] : cases) {
        EXPECT_EQ(run({"set", key, text}).status, 0) << key;
        EXPECT_EQ(run({"get", key}).out, text + "\n");
    }
    EXPECT_EQ(run({"set", "fahrenheit", "on"}).status, 0);
    EXPECT_TRUE(prefs.fahrenheit.get());
    EXPECT_EQ(prefs.widgets.get(), (std::vector<std::string>{"cpu", "disk"}));
    EXPECT_EQ(prefs.menuBarSpanSeconds.get(), 90.0);
}

TEST_F(SettingsCommand, RefusesOtherValuesNamingWhatIsTaken) {
    const std::vector<std::vector<std::string>> cases{
        {"fahrenheit", "maybe", "true or false"},
        {"keepExited", "1.5", "a whole number from 0 to 3600"},
        {"keepExited", "30s", "a whole number"},
        {"keepExited", "99999999999999999999", "a whole number"},
        {"alertTempC", "-5", "from 1 to 200"},
        {"backgroundInterval", "0", "a number from 1 to 3600"},
        {"lastUpdateCheck", "inf", "a number from 0"},
        {"widgetOpacity", "nan", "from 0.1 to 1"},
        {"historyRange", "hour", "one of oneMinute, fiveMinutes, thirtyMinutes"},
        {"samplingProfile", "", "one of diagnostic, normal, powerSaving"},
        {"widgets", "cpu,clock", "a comma-separated list of cpu, memory"},
        {"sidebarLayout", "a b", "pages in their order"},
        {"hotkeyCombo", std::to_string(hotkeyChoices().size()), "a whole number from 0 to"}};
    for (const auto& c : cases) {
        const auto answer = run({"set", c[0], c[1]});
        EXPECT_EQ(answer.status, 2) << c[0];
        EXPECT_TRUE(contains(answer.err, "quarn settings: " + c[0] + " takes "));
        EXPECT_TRUE(contains(answer.err, c[2]));
    }
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsCommand, WrongUsageIsOneLine) {
    const std::vector<std::vector<std::string>> cases{
        {},        {"show"},       {"list", "x"}, {"get"}, {"get", "no\nsuch"}, {"set", "keepExited"},
        {"reset"}, {"reset", "no"}};
    for (const auto& arguments : cases) {
        const auto answer = run(arguments);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err.find('\n'), answer.err.size() - 1) << answer.err;
    }
}

TEST_F(SettingsCommand, ListMarksWhatDiffersFromItsDefault) {
    folder.write("keepExited = 30\nalertTempC = 95\nskippedUpdate = \"2\\u001B[31m\"\n");
    const auto out = run({"list"}).out;
    EXPECT_TRUE(contains(out, "\n* keepExited             30  (default 8)\n"));
    EXPECT_TRUE(contains(out, "\n  alertTempC             95\n"));
    EXPECT_TRUE(contains(out, "\n* skippedUpdate          2[31m  (default \"\")\n"));

    const auto json = run({"list", "--json"}).out;
    EXPECT_TRUE(contains(json, R"("value": 30,
    "default": 8,
    "isDefault": false,)"));
}

TEST_F(SettingsCommand, ResetBringsDefaultsBackAndKeepsTheRest) {
    EXPECT_EQ(run({"reset", "--all"}).status, 0);
    EXPECT_TRUE(folder.names().empty());
    folder.write("# mine\nkeepExited = 30\nfahrenheit = 'yes'\nbenchHistory = '[]'\nwidgets = ['cpu']\n");
    EXPECT_EQ(run({"reset", "keepExited"}).status, 0);
    EXPECT_EQ(folder.text(), "# mine\nfahrenheit = 'yes'\nbenchHistory = '[]'\nwidgets = ['cpu']\n");
    EXPECT_EQ(run({"reset", "--all"}).status, 0);
    EXPECT_EQ(folder.text(), "# mine\nbenchHistory = '[]'\n");
}

TEST_F(SettingsCommand, AFailedWriteIsReported) {
    folder.folder("settings.toml");
    const auto answer = run({"set", "keepExited", "30"});
    EXPECT_EQ(answer.status, 1);
    EXPECT_TRUE(contains(answer.err, "cannot be read"));
}

} // namespace
