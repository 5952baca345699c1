#include "ui/modules/SettingRows.h"

#include "ui/modules/LetterCase.h"
#include "ui/settings/PrefTypes.h"

#include <algorithm>

namespace quarn {

namespace {

using enum SettingEditing;

using Choice = SettingChoice;

constexpr Choice themes[]{{"system", "As the desktop"}, {"light", "Light"}, {"dark", "Dark"}};
constexpr Choice graphSpans[]{
    {"oneMinute", "1 minute"}, {"fiveMinutes", "5 minutes"}, {"thirtyMinutes", "30 minutes"}};
constexpr Choice profiles[]{{"diagnostic", "Diagnostic, every second"},
                            {"normal", "Normal, every 2 seconds"},
                            {"powerSaving", "Power saving, every 5 seconds"}};
constexpr Choice statusItems[]{{0, "None"},        {1, "CPU"},     {2, "Memory"}, {3, "GPU"},
                               {4, "Temperature"}, {5, "Network"}, {6, "Disk"},   {7, "Power"}};
constexpr Choice statusStyles[]{{0, "Value only"}, {1, "Graph only"}, {2, "Value and graph"}};
constexpr Choice statusSpans[]{{30.0, "30 seconds"},
                               {60.0, "1 minute"},
                               {120.0, "2 minutes"},
                               {300.0, "5 minutes"},
                               {600.0, "10 minutes"}};
constexpr Choice exitedSpans[]{
    {3, "3 seconds"}, {8, "8 seconds"}, {30, "30 seconds"}, {60, "1 minute"}, {300, "5 minutes"}};
constexpr Choice historyRanges[]{{"hour", "Hour"}, {"day", "Day"}, {"week", "Week"}, {"month", "Month"}};
constexpr Choice cpuShares[]{{false, "Share of one core"}, {true, "Share of the whole machine"}};
constexpr Choice degrees[]{{false, "Celsius (°C)"}, {true, "Fahrenheit (°F)"}};
constexpr Choice networkUnits[]{{false, "Bytes per second (MB/s)"}, {true, "Bits per second (Mb/s)"}};

constexpr SettingRow appearance[]{
    {"appTheme", "Colours",
     "Light, dark, or as the desktop is. Every window, panel and chart follows at once.", choice, themes},
    {"historyRange", "Span of the live graphs",
     "How far back the charts of the pages reach. The last half hour is always kept.", choice, graphSpans},
    {"crossfadeValues", "Cross-fade changed values",
     "The large figures of the overview blend from one value into the next."},
    {"flashChanges", "Highlight changed values", "A value that changed lights up briefly."},
};

constexpr SettingRow sampling[]{
    {"samplingProfile", "How often the machine is sampled",
     "Faster sampling shows shorter events; slower sampling costs less energy.", choice, profiles},
    {"backgroundInterval",
     "Interval while no window is shown",
     "Status items and panels change this often then, but never more often than with a window.",
     number,
     {},
     "s"},
};

constexpr SettingRow window[]{
    {"openWindowAtLaunch", "Open the window at launch",
     "When off, only the status items and panels appear. Without a tray the window always opens."},
    {"keepRunning", "Run in background",
     "Closing the window leaves the status items and panels running. Without a tray it ends the program."},
    {"rememberPage", "Reopen the last page", "The window opens on the page that was shown last."},
    {"startPage",
     "First page",
     "The page that the window opens on when it does not reopen the last.",
     page,
     {},
     {},
     SettingCondition{"rememberPage", false}},
    {"sidebarLayout", "Pages of the sidebar",
     "Pages that are not checked are hidden. Drag a page, or press Ctrl+Up and Ctrl+Down, to move it.",
     pages},
};

constexpr SettingRow statusItemRows[]{
    {"menuBarItem", "Compact status item", "One reading that is always in view in the tray.", choice,
     statusItems},
    {"menuBarDetailed", "Detailed status items",
     "Each checked reading has an item with a longer graph, in this order. Drag one, or press Ctrl+Up and "
     "Ctrl+Down, to move it.",
     modules},
    {"menuBarStyle", "What a status item shows", "The value as text, a small graph, or both.", choice,
     statusStyles},
    {"menuBarSpanSeconds", "Span of the small graphs",
     "Each column of a graph is the peak of its share of this time.", choice, statusSpans, "s"},
};

constexpr SettingRow panels[]{
    {"widgets", "Open panels", "Small windows with one reading each, to place anywhere.", moduleChecks},
    {"widgetOpacity", "Opacity of panels", "A panel becomes fully opaque when you hover over it.", share},
    {"widgetsOnTop", "Keep panels above other windows", "When off, other windows may cover them."},
};

constexpr SettingRow processes[]{
    {"showExited", "Show exited processes",
     "A process that ended stays in the list for a while, highlighted in red."},
    {"keepExited", "How long exited stay visible", "Then they leave the list.", choice, exitedSpans, "s",
     SettingCondition{"showExited", true}},
};

constexpr SettingRow history[]{
    {"saveMetricsHistory", "Record the long-term history",
     "What the machine and its applications used, for up to two years. It stays on this computer."},
    {"topAppsRange", "Span of the history", "How far back the page of the history reaches.", choice,
     historyRanges},
};

constexpr SettingRow attention[]{
    {"alertTempC",
     "A part is hot above",
     "The hottest sensor of each part of the machine counts.",
     number,
     {},
     "°C"},
    {"alertFreeSpacePercent",
     "A volume is nearly full below",
     "What is free, as a share of the volume.",
     number,
     {},
     "%"},
    {"alertBatteryPercent", "The battery is low below", "While it is not being charged.", number, {}, "%"},
    {"alertSwapGB",
     "Much swap is in use above",
     "Programs that are swapped out answer slowly.",
     number,
     {},
     "GB"},
};

constexpr SettingRow units[]{
    {"appCPUWholeMac", "CPU use of applications",
     "One that keeps two of eight cores busy reads 200 % of a core, or 25 % of the machine.", choice,
     cpuShares},
    {"fahrenheit", "Temperatures", "Everywhere: pages, charts, status items and panels.", choice, degrees},
    {"networkInBits", "Network rates",
     "Providers sell bits; files are counted in bytes, and a byte is eight bits.", choice, networkUnits},
};

constexpr SettingRowGroup groups[]{
    {"Appearance", appearance},
    {"Sampling", sampling},
    {"Window and sidebar", window},
    {"Status items", statusItemRows},
    {"Panels", panels},
    {"Processes", processes},
    {"History", history},
    {"What needs attention", attention},
    {"Units", units},
};

bool has(std::span<const std::string_view> all, std::string_view id) {
    return std::find(all.begin(), all.end(), id) != all.end();
}

} // namespace

SettingValue SettingChoice::stored() const {
    if (const auto* word = std::get_if<std::string_view>(&value)) return std::string(*word);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    if (const auto* whole = std::get_if<int64_t>(&value)) return *whole;
    return std::get<double>(value);
}

std::span<const SettingRowGroup> settingRowGroups() { return groups; }

const SettingRow* settingRow(std::string_view key) {
    for (const auto& group : settingRowGroups())
        for (const auto& row : group.rows)
            if (row.key == key) return &row;
    return nullptr;
}

bool settingMatches(const SettingRowGroup& group, const SettingRow& row, std::string_view query) {
    for (const auto text : {group.title, row.label, row.explanation, row.key})
        if (containsIgnoringCase(text, query)) return true;
    return std::any_of(row.choices.begin(), row.choices.end(),
                       [&](const SettingChoice& choice) { return containsIgnoringCase(choice.text, query); });
}

std::vector<ListedItem> listedItems(std::span<const std::string_view> all,
                                    const std::vector<std::string>& chosen) {
    std::vector<ListedItem> items;
    const auto listed = [&](std::string_view id) {
        return std::any_of(items.begin(), items.end(), [&](const ListedItem& item) { return item.id == id; });
    };
    for (const auto& id : chosen)
        if (has(all, id) && !listed(id)) items.push_back({id, true});
    for (const auto id : all)
        if (!listed(id)) items.push_back({std::string(id), false});
    return items;
}

std::vector<ListedItem> listedItems(std::span<const std::string_view> all, const SidebarLayout& layout) {
    auto items = listedItems(all, layout.order);
    for (auto& item : items) item.chosen = !layout.hidden.contains(item.id);
    return items;
}

std::vector<std::string> chosenItems(const std::vector<ListedItem>& items) {
    std::vector<std::string> chosen;
    for (const auto& item : items)
        if (item.chosen) chosen.push_back(item.id);
    return chosen;
}

SidebarLayout layoutOf(const std::vector<ListedItem>& items, std::span<const std::string_view> all) {
    SidebarLayout layout;
    for (const auto& item : items) {
        layout.order.push_back(item.id);
        if (!item.chosen) layout.hidden.insert(item.id);
    }
    if (std::equal(all.begin(), all.end(), layout.order.begin(), layout.order.end())) layout.order.clear();
    return layout;
}

} // namespace quarn
