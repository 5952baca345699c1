#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quarn {

/// One stored setting. `std::monostate` stands for a value of a kind that no setting has (a date, a table, a
/// mixed array): it is there, it is preserved, and it can be removed but not written.
using SettingValue =
    std::variant<std::monostate, bool, int64_t, double, std::string, std::vector<std::string>>;

/// The stored settings by key.
using SettingsValues = std::map<std::string, SettingValue, std::less<>>;

/// What to do to one key; no value removes it.
struct SettingChange {
    std::string key;
    std::optional<SettingValue> value;
};
using SettingChanges = std::vector<SettingChange>;

} // namespace quarn
