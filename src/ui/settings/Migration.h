#pragma once

#include "ui/settings/SettingValue.h"

#include <string_view>

/// Brings settings of older versions up to date. All pure: they answer the changes to make.
namespace quarn {

/// What a migration looks at.
struct OldSettings {
    const SettingsValues& values; ///< as stored now
    const SettingsValues& former; ///< of the file an older version kept elsewhere; empty when there is none
    std::string_view systemLanguage = "en"; ///< the code that "follow the system" stood for
};

/// Everything below in its order, as one list; empty when there is nothing to do. A key that is stored
/// already is never replaced. Done once: the result of applying it needs no migration.
SettingChanges migrateSettings(const OldSettings& old);

/// "de" for "de_DE.UTF-8", "en" for "C", "POSIX", an empty text and what is no language.
std::string languageOfLocale(std::string_view locale);

} // namespace quarn
