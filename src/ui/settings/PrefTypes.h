#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The kinds of settings that are more than a number or a text. Each is stored as text that a person can
/// write.
namespace quarn {

/// The span of the live graphs.
enum class HistoryRange { oneMinute, fiveMinutes, thirtyMinutes };
/// The window of the top-apps ranking.
enum class TopAppsRange { hour, day, week, month };
/// The colours of the application; `system` follows the desktop.
enum class AppTheme { system, light, dark };

inline constexpr std::array<std::string_view, 3> historyRangeTexts{"oneMinute", "fiveMinutes",
                                                                   "thirtyMinutes"};
inline constexpr std::array<std::string_view, 4> topAppsRangeTexts{"hour", "day", "week", "month"};
inline constexpr std::array<std::string_view, 3> appThemeTexts{"system", "light", "dark"};

double seconds(HistoryRange range);
/// The shortest range that shows `span` seconds, else the longest; none when the span makes no sense.
std::optional<HistoryRange> historyRangeForSpan(double span);

/// The texts of the setting "samplingProfile", fastest first.
inline constexpr std::array<std::string_view, 3> samplingProfileTexts{"diagnostic", "normal", "powerSaving"};
/// The profile nearest to an interval of seconds that an older version stored; none when it makes no sense.
std::optional<std::string_view> samplingProfileForInterval(double interval);

/// The modules that the menu bar and floating panels can show, in the order of their kinds.
inline constexpr std::array<std::string_view, 7> moduleTexts{"cpu",     "memory", "gpu",  "temperature",
                                                             "network", "disk",   "power"};

/// Order and visibility of the sidebar's pages, which are named by identifiers of letters, digits, "-" and
/// "_".
struct SidebarLayout {
    std::vector<std::string>
        order; ///< empty: the built-in order. Pages that are not named follow in that order
    std::set<std::string> hidden;

    bool operator==(const SidebarLayout&) const = default;

    /// "cpu,memory;disks": the order, and behind a semicolon, when there are any, the hidden pages.
    std::string encoded() const;
    /// nullopt when the text is not of that form; a page that is named twice counts once.
    static std::optional<SidebarLayout> decoded(std::string_view text);
};

/// A global keyboard shortcut.
struct HotkeyShortcut {
    enum Modifier : uint32_t { shift = 1, control = 2, alt = 4, super = 8 };

    uint32_t keyCode = 0;   ///< X key symbol; for letters and digits that is the character
    uint32_t modifiers = 0; ///< sum of Modifier

    bool operator==(const HotkeyShortcut&) const = default;
};

struct HotkeyChoice {
    HotkeyShortcut shortcut;
    std::string_view name; ///< "Ctrl+Alt+Q"
};

/// What the setting "hotkeyCombo" counts through.
std::span<const HotkeyChoice> hotkeyChoices();

} // namespace quarn
