#include "ui/settings/Pref.h"

namespace quarn {

AnySetting::AnySetting(SettingGroup& group, std::string_view key, std::string_view meaning, Accepted accepted)
    : group_(group), key_(key), meaning_(meaning), accepted_(accepted) {
    group.settings_.push_back(this);
}

void AnySetting::store(SettingValue value) { group_.d.set(key_, std::move(value)); }
void AnySetting::reset() { group_.d.remove(key_); }

AnySetting* SettingGroup::find(std::string_view key) const {
    const auto found = std::find_if(settings_.begin(), settings_.end(),
                                    [&](const AnySetting* setting) { return setting->key() == key; });
    return found == settings_.end() ? nullptr : *found;
}

} // namespace quarn
