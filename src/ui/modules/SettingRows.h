#pragma once

#include "ui/settings/SettingValue.h"

#include <span>
#include <string_view>

namespace quarn {

struct SidebarLayout;

/// How a setting is edited.
enum class SettingEditing {
    check,        ///< on or off
    choice,       ///< one of `choices`; another stored value is shown as a number with its unit
    page,         ///< the number of a page
    number,       ///< within what the setting accepts, with `unit`
    share,        ///< a slider for what the setting accepts, shown as percent
    modules,      ///< which modules, in an order of one's own
    moduleChecks, ///< which modules
    pages,        ///< the sidebar's layout
};

struct SettingChoice {
    std::variant<bool, int64_t, double, std::string_view> value;
    std::string_view text;

    SettingValue stored() const;
};

/// A bool setting and what it must be.
struct SettingCondition {
    std::string_view key;
    bool value = true;
};

/// One row of the settings page.
struct SettingRow {
    std::string_view key;
    std::string_view label;
    std::string_view explanation;
    SettingEditing editing = SettingEditing::check;
    std::span<const SettingChoice> choices{};
    std::string_view unit{};
    std::optional<SettingCondition> onlyWhile{}; ///< otherwise the row makes no difference
};

struct SettingRowGroup {
    std::string_view title;
    std::span<const SettingRow> rows;
};

/// Every setting that has an effect in the windowed application, as its settings page shows it.
std::span<const SettingRowGroup> settingRowGroups();
/// The row of a key; nullptr for a setting that the page does not show.
const SettingRow* settingRow(std::string_view key);
/// Whether a person who typed `query` may mean this row: it is in its label, explanation, choices, key or its
/// group's title. Letters of either case; an empty query means all.
bool settingMatches(const SettingRowGroup& group, const SettingRow& row, std::string_view query);

/// One entry of a list whose entries are chosen and ordered.
struct ListedItem {
    std::string id;
    bool chosen = false;

    bool operator==(const ListedItem&) const = default;
};

/// The chosen ones in their order, then the others in that of `all`; ids that `all` lacks are left out.
std::vector<ListedItem> listedItems(std::span<const std::string_view> all,
                                    const std::vector<std::string>& chosen);
/// All pages in the order of the layout, the hidden ones not chosen.
std::vector<ListedItem> listedItems(std::span<const std::string_view> all, const SidebarLayout& layout);
/// The ids of the chosen ones.
std::vector<std::string> chosenItems(const std::vector<ListedItem>& items);
/// The layout that shows the pages so. The built-in order (that of `all`) is stored as no order, so that
/// pages to come find their place.
SidebarLayout layoutOf(const std::vector<ListedItem>& items, std::span<const std::string_view> all);

} // namespace quarn
