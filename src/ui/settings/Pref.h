#pragma once

#include "ui/settings/PrefTypes.h"
#include "ui/settings/SettingsStore.h"

#include <algorithm>
#include <limits>

namespace quarn {

/// What a person may store under a key; the program itself is free.
struct Accepted {
    double least = -std::numeric_limits<double>::infinity();
    double most = std::numeric_limits<double>::infinity();
    std::span<const std::string_view> choices{}; ///< the texts that a text, or each one of a list, may be
    std::string_view form{};                     ///< of a text with a grammar of its own, for people
};

/// How a type is stored. `fromStored` answers nullopt for a value of the wrong type, which reads as the
/// default.
template <class T>
struct PrefStorable {
    static constexpr Accepted accepted{};
    static std::optional<T> fromStored(const SettingValue& value) {
        if (const T* stored = std::get_if<T>(&value)) return *stored;
        if constexpr (std::is_same_v<T, double>) // "2" is a fine way to write 2.0 by hand
            if (const auto* whole = std::get_if<int64_t>(&value)) return static_cast<double>(*whole);
        return {};
    }
    static SettingValue toStored(const T& value) { return value; }
};

/// An enumeration stored as one of the texts that name its cases.
template <class E, const auto& texts>
struct PrefStorableEnum {
    static constexpr Accepted accepted{.choices = texts};
    static std::optional<E> fromStored(const SettingValue& value) {
        const auto* text = std::get_if<std::string>(&value);
        const auto found = text ? std::find(texts.begin(), texts.end(), *text) : texts.end();
        if (found == texts.end()) return {};
        return static_cast<E>(found - texts.begin());
    }
    static SettingValue toStored(E value) { return std::string(texts[static_cast<size_t>(value)]); }
};
template <>
struct PrefStorable<HistoryRange> : PrefStorableEnum<HistoryRange, historyRangeTexts> {};
template <>
struct PrefStorable<TopAppsRange> : PrefStorableEnum<TopAppsRange, topAppsRangeTexts> {};
template <>
struct PrefStorable<AppTheme> : PrefStorableEnum<AppTheme, appThemeTexts> {};

template <>
struct PrefStorable<SidebarLayout> {
    static constexpr Accepted accepted{
        .form = "pages in their order, as in \"cpu,memory;disks\" (hidden ones last)"};
    static std::optional<SidebarLayout> fromStored(const SettingValue& value) {
        const auto* text = std::get_if<std::string>(&value);
        return text ? SidebarLayout::decoded(*text) : std::nullopt;
    }
    static SettingValue toStored(const SidebarLayout& value) { return value.encoded(); }
};

/// A key and the typed value that is answered while nothing of that type is stored under it.
template <class T>
struct Pref {
    std::string_view key; ///< a literal
    T defaultValue;

    T read(const SettingsValues& values) const {
        const auto found = values.find(key);
        if (found == values.end()) return defaultValue;
        return PrefStorable<T>::fromStored(found->second).value_or(defaultValue);
    }
};

class SettingGroup;

/// One setting, whatever its type: a row of the table of settings.
class AnySetting {
public:
    AnySetting(SettingGroup& group, std::string_view key, std::string_view meaning, Accepted accepted);
    virtual ~AnySetting() = default;
    AnySetting(const AnySetting&) = delete;
    AnySetting& operator=(const AnySetting&) = delete;

    std::string_view key() const { return key_; }
    std::string_view meaning() const { return meaning_; } ///< one sentence
    const Accepted& accepted() const { return accepted_; }

    virtual SettingValue storedDefault() const = 0;
    /// The value in effect: the default when nothing of the right type is stored.
    virtual SettingValue storedValue() const = 0;
    /// Whether a stored value would be answered, rather than the default.
    virtual bool understands(const SettingValue& value) const = 0;

    /// Stores a value that `understands`; throws SettingsError.
    void store(SettingValue value);
    /// Forgets what is stored, so that the default applies; throws SettingsError.
    void reset();

protected:
    SettingGroup& group_;

private:
    std::string_view key_;
    std::string_view meaning_;
    Accepted accepted_;
};

/// Settings on one store, in the order of their declaration.
class SettingGroup {
public:
    explicit SettingGroup(SettingsStore& store) : d(store) {}
    SettingGroup(const SettingGroup&) = delete;
    SettingGroup& operator=(const SettingGroup&) = delete;

    SettingsStore& d; ///< the user-defaults store

    std::span<AnySetting* const> settings() const { return settings_; }
    AnySetting* find(std::string_view key) const; ///< nullptr when there is no such setting

private:
    friend AnySetting;
    std::vector<AnySetting*> settings_;
};

/// A typed setting. Any thread; reading is cheap enough for every tick.
template <class T>
class Setting final : public AnySetting {
public:
    Setting(SettingGroup& group, std::string_view key, T defaultValue, std::string_view meaning,
            Accepted accepted = PrefStorable<T>::accepted)
        : AnySetting(group, key, meaning, accepted), pref_{key, std::move(defaultValue)} {}

    const Pref<T>& pref() const { return pref_; }

    T get() const { return pref_.read(*group_.d.values()); }
    /// Stores the value at once; throws SettingsError.
    void set(const T& value) { store(PrefStorable<T>::toStored(value)); }

    SettingValue storedDefault() const override { return PrefStorable<T>::toStored(pref_.defaultValue); }
    SettingValue storedValue() const override { return PrefStorable<T>::toStored(get()); }
    bool understands(const SettingValue& value) const override {
        return PrefStorable<T>::fromStored(value).has_value();
    }

private:
    Pref<T> pref_;
};

} // namespace quarn
