#include "ui/settings/PrefTypes.h"
#include "ui/settings/SettingsText.h"

#include <cstdlib>

namespace {

using namespace quarn;

/// Whatever a sound file holds, a change arrives and nothing else is lost.
void check(std::string_view text, const SettingsValues& values, const SettingChange& change) {
    const auto edited = editedSettings(text, {change});
    if (!edited) std::abort();
    SettingsValues expected = values;
    if (change.value)
        expected[change.key] = *change.value;
    else
        expected.erase(change.key);
    const auto parsed = parseSettings(*edited);
    if (parsed.error || parsed.values != expected) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto layout = SidebarLayout::decoded(text))
        if (SidebarLayout::decoded(layout->encoded()) != layout) std::abort();

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
