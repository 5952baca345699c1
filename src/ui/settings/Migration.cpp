#include "ui/settings/Migration.h"

#include "ui/settings/Pref.h"

#include <array>
#include <cctype>

namespace quarn {

namespace {

constexpr std::string_view formerSettingsTaken = "migratedFromOldBundle";

/// Keys of older versions that nothing reads. "theme" belongs to them too, but it is removed by the migration
/// that still reads it.
constexpr std::array<std::string_view, 2> unusedKeys{"history", "windowFrame"};

/// The values as the changes so far leave them, and those changes.
class Draft {
public:
    explicit Draft(SettingsValues values) : values_(std::move(values)) {}

    const SettingsValues& values() const { return values_; }
    bool has(std::string_view key) const { return values_.contains(key); }

    template <class T>
    std::optional<T> read(std::string_view key) const {
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : PrefStorable<T>::fromStored(found->second);
    }
    void addMissing(std::string_view key, SettingValue value) {
        if (has(key) || std::holds_alternative<std::monostate>(value)) return;
        values_.emplace(key, value);
        changes.push_back({std::string(key), std::move(value)});
    }
    void remove(std::string_view key) {
        const auto found = values_.find(key);
        if (found == values_.end()) return;
        values_.erase(found);
        changes.push_back({std::string(key), std::nullopt});
    }

    SettingChanges changes;

private:
    SettingsValues values_;
};

void migrateFromOldBundleIfNeeded(Draft& draft, const SettingsValues& former) {
    if (former.empty() || draft.has(formerSettingsTaken)) return;
    for (const auto& [key, value] : former) draft.addMissing(key, value);
    draft.addMissing(formerSettingsTaken, true);
}

void removeUnusedKeys(Draft& draft) {
    for (const auto key : unusedKeys) draft.remove(key);
}

void migrateLegacyLanguage(Draft& draft, std::string_view systemLanguage) {
    if (const auto language = draft.read<std::string>("language"); language && !language->empty())
        draft.addMissing("languageCode", *language == "system" ? std::string(systemLanguage) : *language);
    draft.remove("language");
}

void migrateGraphSpan(Draft& draft) {
    if (const auto range = historyRangeForSpan(draft.read<double>("graphSpanSeconds").value_or(0)))
        draft.addMissing("historyRange", PrefStorable<HistoryRange>::toStored(*range));
    draft.remove("graphSpanSeconds");
}

void migrateLegacyRefresh(Draft& draft) {
    if (const auto profile = samplingProfileForInterval(draft.read<double>("refresh").value_or(0)))
        draft.addMissing("samplingProfile", std::string(*profile));
    draft.remove("refresh");
}

void migrateLegacyTheme(Draft& draft) {
    if (const auto theme = draft.read<std::string>("theme")) draft.addMissing("appTheme", *theme);
    draft.remove("theme");
}

} // namespace

SettingChanges migrateSettings(const OldSettings& old) {
    Draft draft(old.values);
    migrateFromOldBundleIfNeeded(draft, old.former);
    removeUnusedKeys(draft);
    migrateLegacyLanguage(draft, old.systemLanguage);
    migrateGraphSpan(draft);
    migrateLegacyRefresh(draft);
    migrateLegacyTheme(draft);
    return std::move(draft.changes);
}

std::string languageOfLocale(std::string_view locale) {
    std::string language;
    for (const char c : locale.substr(0, locale.find_first_of("_.@-"))) {
        if (!std::isalpha(static_cast<unsigned char>(c))) return "en";
        language += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return language.size() == 2 || language.size() == 3 ? language : "en";
}

} // namespace quarn
