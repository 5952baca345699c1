#include "ui/modules/SettingRows.h"

#include "settings/Support.h"
#include "ui/settings/Prefs.h"

#include <cmath>
#include <set>

namespace {

using namespace quarn;
using namespace quarn::testing;

/// Settings without an effect in the windowed application: those of features that it does not have.
const std::set<std::string_view> withoutEffect{
    "alwaysAdmin",     "languageCode",    "alertsEnabled", "alertNotifications", "alertSound",
    "alertCPUPercent", "alertProcessCPU", "hotkeyEnabled", "hotkeyCombo",        "showInDock",
    "autoUpdateCheck", "lastUpdateCheck", "skippedUpdate"};

struct Settings {
    SettingsFolder folder;
    WatchfulStore store{folder};
    Prefs prefs{store};
};

TEST(SettingRows, ShowEverySettingThatHasAnEffectOnce) {
    Settings settings;
    for (const auto* setting : settings.prefs.settings())
        EXPECT_NE(settingRow(setting->key()) != nullptr, withoutEffect.contains(setting->key()))
            << setting->key();
    std::set<std::string_view> keys;
    for (const auto& group : settingRowGroups()) {
        for (const auto& row : group.rows) {
            EXPECT_NE(settings.prefs.find(row.key), nullptr) << row.key << " does not exist";
            EXPECT_TRUE(keys.insert(row.key).second) << row.key;
            EXPECT_TRUE(!row.onlyWhile || settingRow(row.onlyWhile->key)) << row.key;
        }
    }
}

TEST(SettingRows, TheirEditorsOfferWhatTheSettingsAccept) {
    Settings settings;
    for (const auto& group : settingRowGroups()) {
        for (const auto& row : group.rows) {
            SCOPED_TRACE(row.key);
            const auto& setting = *settings.prefs.find(row.key);
            const auto byDefault = setting.storedDefault();
            const auto& accepted = setting.accepted();
            bool offersDefault = row.choices.empty();
            for (const auto& choice : row.choices) {
                EXPECT_TRUE(setting.understands(choice.stored())) << choice.text;
                EXPECT_EQ(choice.stored().index(), byDefault.index()) << choice.text;
                offersDefault |= choice.stored() == byDefault;
                if (const auto* number = std::get_if<int64_t>(&choice.value)) {
                    EXPECT_GE(static_cast<double>(*number), accepted.least);
                    EXPECT_LE(static_cast<double>(*number), accepted.most);
                }
            }
            EXPECT_TRUE(offersDefault);
            EXPECT_TRUE(accepted.choices.empty() || row.choices.empty() ||
                        row.choices.size() == accepted.choices.size());
            switch (row.editing) {
            case SettingEditing::check: EXPECT_TRUE(std::holds_alternative<bool>(byDefault)); break;
            case SettingEditing::page: EXPECT_TRUE(std::holds_alternative<int64_t>(byDefault)); break;
            case SettingEditing::share:
            case SettingEditing::number: EXPECT_TRUE(std::isfinite(accepted.least + accepted.most)); break;
            case SettingEditing::modules:
            case SettingEditing::moduleChecks:
                EXPECT_TRUE(std::holds_alternative<std::vector<std::string>>(byDefault));
                break;
            case SettingEditing::choice: EXPECT_FALSE(row.choices.empty()); break;
            case SettingEditing::pages: EXPECT_EQ(row.key, "sidebarLayout"); break;
            }
        }
    }
}

TEST(SettingRows, AreFoundByWhatPeopleType) {
    const auto found = [](std::string_view query) {
        std::vector<std::string_view> keys;
        for (const auto& group : settingRowGroups())
            for (const auto& row : group.rows)
                if (settingMatches(group, row, query)) keys.push_back(row.key);
        return keys;
    };
    using Keys = std::vector<std::string_view>;
    EXPECT_EQ(found("FAHRENHEIT"), Keys{"fahrenheit"}) << "by a choice or the key, in either case";
    EXPECT_EQ(found("widgetsontop"), Keys{"widgetsOnTop"});
    EXPECT_EQ(found("units"), (Keys{"appCPUWholeMac", "fahrenheit", "networkInBits"})) << "by the group";
    EXPECT_EQ(found("nonsense"), Keys{});
    EXPECT_GT(found("").size(), 20u);
}

TEST(ListedItems, KeepTheChosenOrderAndReadBack) {
    using Names = std::vector<std::string>;
    using Items = std::vector<ListedItem>;
    const std::vector<std::string_view> all{"a", "b", "c"};
    const std::pair<Names, Items> cases[]{
        {{}, {{"a", false}, {"b", false}, {"c", false}}},
        {{"c", "a"}, {{"c", true}, {"a", true}, {"b", false}}},
        {{"b", "gone", "b"}, {{"b", true}, {"a", false}, {"c", false}}},
    };
    for (const auto& [chosen, items] : cases) EXPECT_EQ(listedItems(all, chosen), items);
    EXPECT_EQ(chosenItems({{"c", true}, {"b", false}, {"a", true}}), (Names{"c", "a"}));
}

TEST(ListedItems, ALayoutInTheBuiltInOrderStaysOpenForNewPages) {
    const std::vector<std::string_view> all{"a", "b", "c"};
    const std::pair<SidebarLayout, SidebarLayout> cases[]{
        {{}, {}},
        {{{}, {"b"}}, {{}, {"b"}}},
        {{{"a", "b", "c"}, {}}, {}},
        {{{"c"}, {"gone"}}, {{"c", "a", "b"}, {}}},
        {{{"b", "a"}, {"a"}}, {{"b", "a", "c"}, {"a"}}},
    };
    for (const auto& [stored, again] : cases) EXPECT_EQ(layoutOf(listedItems(all, stored), all), again);
}

} // namespace
