#include "ui/settings/PrefTypes.h"

#include <algorithm>
#include <cmath>

namespace quarn {

namespace {

constexpr std::array<double, 3> historyRangeSeconds{60, 300, 1800};

constexpr uint32_t keyEscape = 0xff1b;
constexpr std::array hotkeys{
    HotkeyChoice{{'q', HotkeyShortcut::control | HotkeyShortcut::alt}, "Ctrl+Alt+Q"},
    HotkeyChoice{{'q', HotkeyShortcut::super | HotkeyShortcut::shift}, "Super+Shift+Q"},
    HotkeyChoice{{keyEscape, HotkeyShortcut::control | HotkeyShortcut::shift}, "Ctrl+Shift+Escape"},
    HotkeyChoice{{keyEscape, HotkeyShortcut::super}, "Super+Escape"},
};

bool isPage(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '_';
    });
}

template <class Pages>
std::string joined(const Pages& pages) {
    std::string text;
    for (const auto& page : pages) text += (text.empty() ? "" : ",") + page;
    return text;
}

/// The pages between the commas; nullopt when one of them is no page's name.
std::optional<std::vector<std::string>> splitPages(std::string_view text) {
    std::vector<std::string> pages;
    while (!text.empty()) {
        const size_t comma = text.find(',');
        const std::string_view page = text.substr(0, comma);
        if (!isPage(page)) return {};
        if (std::find(pages.begin(), pages.end(), page) == pages.end()) pages.emplace_back(page);
        if (comma == std::string_view::npos) break;
        text.remove_prefix(comma + 1);
        if (text.empty()) return {};
    }
    return pages;
}

bool isPositive(double value) { return std::isfinite(value) && value > 0; }

} // namespace

double seconds(HistoryRange range) { return historyRangeSeconds[static_cast<size_t>(range)]; }

std::optional<HistoryRange> historyRangeForSpan(double span) {
    if (!isPositive(span)) return {};
    for (const auto range : {HistoryRange::oneMinute, HistoryRange::fiveMinutes})
        if (span <= seconds(range)) return range;
    return HistoryRange::thirtyMinutes;
}

std::optional<std::string_view> samplingProfileForInterval(double interval) {
    if (!isPositive(interval)) return {};
    return samplingProfileTexts[interval <= 1 ? 0 : interval <= 2 ? 1 : 2];
}

std::string SidebarLayout::encoded() const {
    return hidden.empty() ? joined(order) : joined(order) + ';' + joined(hidden);
}

std::optional<SidebarLayout> SidebarLayout::decoded(std::string_view text) {
    const size_t semicolon = text.find(';');
    const auto order = splitPages(text.substr(0, semicolon));
    const auto hidden =
        splitPages(semicolon == std::string_view::npos ? std::string_view() : text.substr(semicolon + 1));
    if (!order || !hidden) return {};
    return SidebarLayout{*order, {hidden->begin(), hidden->end()}};
}

std::span<const HotkeyChoice> hotkeyChoices() { return hotkeys; }

} // namespace quarn
