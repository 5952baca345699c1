#include "ui/settings/Prefs.h"

#include "HelperKit/Log.h"
#include "core/Locale.h"
#include "ui/settings/Migration.h"

#include <fmt/format.h>

namespace quarn {

namespace {

void migrate(SettingsStore& store, const MigrationSources& sources) {
    const auto former = SettingsStore(sources.formerFile).values();
    const auto changes = [&](const SettingsValues& values) {
        return migrateSettings({values, *former, sources.systemLanguage});
    };
    if (!changes(*store.values()).empty()) store.update(changes);
}

} // namespace

MigrationSources MigrationSources::ofThisUser() {
    return {settingsFileIn("com.kelmora.quarn"), languageOfLocale(sysinfo::messageLocale())};
}

Prefs::Prefs(SettingsStore& store, const MigrationSources& sources) : SettingGroup(store) {
    try {
        migrate(store, sources);
    } catch (const SettingsError& error) {
        log(fmt::format("could not bring the settings up to date: {}", error.what()));
    }
}

Prefs& Prefs::shared() {
    static SettingsStore store(settingsFileIn("quarn"));
    static Prefs prefs(store, MigrationSources::ofThisUser());
    return prefs;
}

std::vector<std::string> Prefs::menuBarModules() const {
    const auto values = d.values();
    std::vector<std::string> modules;
    const auto add = [&](std::string_view module) {
        const bool known = std::find(moduleTexts.begin(), moduleTexts.end(), module) != moduleTexts.end();
        const bool listed = std::find(modules.begin(), modules.end(), module) != modules.end();
        if (known && !listed) modules.emplace_back(module);
    };
    const auto compact =
        static_cast<uint64_t>(menuBarItem.pref().read(*values)) - 1; // none is the greatest number
    if (compact < moduleTexts.size()) add(moduleTexts[compact]);
    for (const auto& module : menuBarDetailed.pref().read(*values)) add(module);
    return modules;
}

std::optional<HotkeyShortcut> Prefs::hotkey() const {
    const auto values = d.values();
    const auto choice = static_cast<uint64_t>(hotkeyCombo.pref().read(*values));
    if (!hotkeyEnabled.pref().read(*values) || choice >= hotkeyChoices().size()) return {};
    return hotkeyChoices()[choice].shortcut;
}

} // namespace quarn
