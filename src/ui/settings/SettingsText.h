#pragma once

#include "ui/settings/SettingValue.h"

#include <string_view>

/// The text of a settings file: TOML with one key for each setting.
namespace quarn {

struct ParsedSettings {
    SettingsValues values;            ///< the top level; empty when there is an error
    std::optional<std::string> error; ///< "line 3: expected value, saw …"
};

/// Total: any bytes give values or an error.
ParsedSettings parseSettings(std::string_view text);

/// `text` with `changes` made and everything else kept: other keys and tables always, comments and layout
/// wherever the change concerns lines of its own. nullopt when `text` is not valid, or when a change cannot
/// be written (a key or text that is not UTF-8, a monostate).
std::optional<std::string> editedSettings(std::string_view text, const SettingChanges& changes);

} // namespace quarn
