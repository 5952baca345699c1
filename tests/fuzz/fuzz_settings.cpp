#include "Fuzz.h"
#include "ui/settings/PrefTypes.h"
#include "ui/settings/SettingsText.h"

namespace {

using namespace quarn;

/// Whatever a sound file holds, a change arrives and nothing else is lost.
void check(std::string_view text, const SettingsValues& values, const SettingChange& change) {
    const auto edited = editedSettings(text, {change});
    require(edited.has_value());
    SettingsValues expected = values;
    if (change.value)
        expected[change.key] = *change.value;
    else
        expected.erase(change.key);
    const auto parsed = parseSettings(*edited);
    require(!parsed.error && parsed.values == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text = textOf(data, size);
    if (const auto layout = SidebarLayout::decoded(text))
        require(SidebarLayout::decoded(layout->encoded()) == layout);

    const auto parsed = parseSettings(text);
    if (parsed.error || parsed.values != parsed.values) return 0; // a NaN equals nothing
    check(text, parsed.values, {"added key", std::vector<std::string>{"a", "\"\n"}});
    if (parsed.values.empty()) return 0;
    for (const auto& key : {parsed.values.begin()->first, parsed.values.rbegin()->first}) {
        check(text, parsed.values, {key, 0.5});
        check(text, parsed.values, {key, std::nullopt});
    }
    return 0;
}
